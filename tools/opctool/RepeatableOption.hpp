#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace opctool {

/// An option that takes one value each time it is given, and may be given more than once.
inline CLI::Option* addRepeatable(CLI::App* command, const std::string& name,
                                  std::vector<std::string>& values, const std::string& what) {
    return command->add_option(name, values, what)->allow_extra_args(false);
}

} // namespace opctool
