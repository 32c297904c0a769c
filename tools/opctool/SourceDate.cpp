#include "SourceDate.hpp"

#include <opc/physical/ZipOptions.hpp>

#include <CLI/CLI.hpp>

#include <charconv>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace opctool {

void takeSourceDate(opc::physical::ZipOptions& options) {
    const char* const value = std::getenv("SOURCE_DATE_EPOCH");
    if (value == nullptr)
        return;
    const std::string_view text = value;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), options.deterministicTime);
    if (error != std::errc() || end != text.data() + text.size() || options.deterministicTime < 0)
        throw CLI::ValidationError("SOURCE_DATE_EPOCH",
                                   "is no number of seconds since 1970: " + std::string(text));
    options.deterministic = true;
}

} // namespace opctool
