#include "SourceDate.hpp"

#include <opc/physical/ZipOptions.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <system_error>

namespace opctool {

namespace {

std::optional<std::int64_t> sourceDate() {
    const char* const value = std::getenv("SOURCE_DATE_EPOCH");
    if (value == nullptr)
        return std::nullopt;
    const std::string_view text = value;
    std::int64_t seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error != std::errc() || end != text.data() + text.size() || seconds < 0)
        throw CLI::ValidationError("SOURCE_DATE_EPOCH",
                                   "is no number of seconds since 1970: " + std::string(text));
    return seconds;
}

} // namespace

std::chrono::system_clock::time_point presentTime() {
    using Clock = std::chrono::system_clock;
    const auto seconds = sourceDate();
    if (!seconds)
        return Clock::now();
    const auto most = std::chrono::duration_cast<std::chrono::seconds>(Clock::duration::max()).count();
    return Clock::time_point(std::chrono::seconds(std::min<std::int64_t>(*seconds, most)));
}

void takeSourceDate(opc::physical::ZipOptions& options) {
    if (const auto seconds = sourceDate()) {
        options.deterministicTime = *seconds;
        options.deterministic = true;
    }
}

} // namespace opctool
