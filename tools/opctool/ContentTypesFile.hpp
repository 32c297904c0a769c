#pragma once

#include <map>
#include <string>

namespace opctool {

/// Reads content types from a file. Each line has an extension or the name of a part, which begins with a slash, and behind
/// it the type: `png image/png`. Empty lines and those that begin with # don't count.
/// @return by names and extensions, in lower case
/// @throws CLI::ValidationError  a line has something else
std::map<std::string, std::string> readContentTypes(const std::string& path);

} // namespace opctool
