#include "ContentTypesFile.hpp"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace opctool {

namespace {

std::string toLowerCase(std::string text) {
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

/// A media type has its slash behind another character: the name of a part begins with it.
bool isType(const std::string& word) {
    return word.find('/') != std::string::npos && word[0] != '/';
}

} // namespace

std::map<std::string, std::string> readContentTypes(const std::string& path) {
    std::map<std::string, std::string> types;
    std::ifstream file{std::filesystem::path(path)};
    std::size_t number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        std::istringstream words(line);
        std::string key;
        std::string type;
        if (!(words >> key) || key[0] == '#')
            continue;
        std::string rest;
        if (!(words >> type) || isType(key) || !isType(type) || words >> rest)
            throw CLI::ValidationError("--types",
                                       path + ", line " + std::to_string(number) +
                                           ": it needs an extension or a part name, and a content type");
        types[toLowerCase(key[0] == '.' ? key.substr(1) : key)] = type;
    }
    return types;
}

} // namespace opctool
