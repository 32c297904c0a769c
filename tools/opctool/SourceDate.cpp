#include "SourceDate.hpp"

#include <opc/physical/ZipOptions.hpp>

#include <CLI/CLI.hpp>

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
    const auto seconds = sourceDate();
    return seconds ? std::chrono::system_clock::from_time_t(*seconds) : std::chrono::system_clock::now();
}

void takeSourceDate(opc::physical::ZipOptions& options) {
    if (const auto seconds = sourceDate()) {
        options.deterministicTime = *seconds;
        options.deterministic = true;
    }
}

} // namespace opctool
