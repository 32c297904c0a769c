#pragma once

#include <istream>
#include <map>
#include <string>
#include <vector>

namespace opctool {

/// A line of a list of hashes, as `sha256sum` writes them: a backslash in front tells that the name has escapes.
std::string hashLine(const std::string& hash, const std::string& name);

/// What a list expects of one file.
struct ExpectedHash {
    std::string hash;
    std::string name; ///< as the list has it
    std::string part; ///< empty for the hash of the whole package
};

/// By file.
using HashList = std::map<std::string, std::vector<ExpectedHash>>;

/// Reads a list. Behind `!` a name goes on with a part of the package.
/// @param path  of the list; "-" is standard input
/// @throws EndsWith  it can't be read, or isn't such a list: standard error tells
HashList readHashList(const std::string& path);

} // namespace opctool
