#pragma once

#include <CLI/CLI.hpp>

namespace opctool {

/// Writes help within 80 columns: of the tool, or of a command with its examples and exit statuses.
class Help : public CLI::FormatterBase {
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
};

} // namespace opctool
