#include "HashList.hpp"

#include "Command.hpp"
#include "Messages.hpp"

#include <filesystem>
#include <fstream>
#include <iostream>

namespace opctool {

namespace {

constexpr std::size_t HASH_LENGTH = 64;

/// @return empty if it isn't escaped well
std::string unescape(const std::string& text) {
    std::string name;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            name += text[i];
            continue;
        }
        const char next = ++i < text.size() ? text[i] : '\0';
        if (next != '\\' && next != 'n' && next != 'r')
            return {};
        name += next == 'n' ? '\n' : next == 'r' ? '\r' : '\\';
    }
    return name;
}

bool isFile(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

/// @return whether the line is one of a list
bool readLine(std::string line, HashList& list) {
    const bool isEscaped = line.substr(0, 1) == "\\";
    line.erase(0, isEscaped ? 1 : 0);
    const std::string separator = line.size() > HASH_LENGTH + 2 ? line.substr(HASH_LENGTH, 2) : "";
    if ((separator != "  " && separator != " *") ||
        line.find_first_not_of("0123456789abcdefABCDEF") != HASH_LENGTH)
        return false;
    ExpectedHash expected;
    for (const char c : line.substr(0, HASH_LENGTH))
        expected.hash += c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    expected.name = line.substr(HASH_LENGTH + 2);
    if (isEscaped)
        expected.name = unescape(expected.name);
    std::string file = expected.name;
    if (const std::size_t end = file.rfind("!/"); end != std::string::npos && !isFile(file)) {
        expected.part = file.substr(end + 1);
        file.erase(end);
    }
    if (file.empty())
        return false;
    list[file].push_back(std::move(expected));
    return true;
}

[[noreturn]] void refuseList(const std::string& path, const std::string& why) {
    tell(path, why);
    throw EndsWith{FAILURE};
}

} // namespace

std::string hashLine(const std::string& hash, const std::string& name) {
    std::string escaped;
    for (const char c : name)
        escaped += c == '\\' ? "\\\\" : c == '\n' ? "\\n" : c == '\r' ? "\\r" : std::string(1, c);
    return (escaped == name ? "" : "\\") + hash + "  " + escaped;
}

HashList readHashList(const std::string& path) {
    std::ifstream file;
    if (path != "-")
        file.open(path);
    std::istream& input = path == "-" ? std::cin : file;
    if (!input)
        refuseList(path, "can't be read");
    HashList list;
    std::size_t number = 0;
    for (std::string line; std::getline(input, line);)
        if (++number; !readLine(line, list))
            refuseList(path, "line " + std::to_string(number) + " isn't one of a list of hashes");
    if (input.bad() || number == 0)
        refuseList(path, "has no hashes");
    return list;
}

} // namespace opctool
