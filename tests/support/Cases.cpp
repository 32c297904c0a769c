#include "support/Cases.hpp"
#include "support/Texts.hpp"

#include <algorithm>
#include <fstream>
#include <map>
#include <stdexcept>

namespace opc::test {

namespace {

std::string unescaped(const std::string& column) {
    static const std::map<char, std::string> BY_LETTER = {{'n', "\n"}, {'r', "\r"},  {'t', "\t"},
                                                          {'s', " "},  {'\\', "\\"}, {'e', ""}};
    std::string text;
    std::size_t start = 0;
    for (std::size_t at = 0; (at = column.find('\\', start)) != std::string::npos;) {
        text.append(column, start, at - start);
        const char letter = column.at(at + 1);
        const std::size_t digits = letter == 'x' ? 2 : letter == 'u' ? 4 : 0;
        start = at + 2 + digits;
        if (digits == 0 && BY_LETTER.count(letter) == 0)
            throw std::runtime_error("there is no such escape: " + column);
        const auto number = [&] { return std::stoul(column.substr(at + 2, digits), nullptr, 16); };
        if (letter == 'x')
            text += static_cast<char>(number());
        else
            text += letter == 'u' ? toUDEString(std::u16string(1, static_cast<char16_t>(number())))
                                  : BY_LETTER.at(letter);
    }
    return text.append(column, start);
}

/// The columns of a line after those of its heading.
std::vector<std::string> split(const std::string& line, std::vector<std::string> columns) {
    const std::string padded = " " + line + " ";
    for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 2) {
        end = padded.find(" | ", start);
        const std::string column = padded.substr(start, end - start);
        const std::size_t first = std::min(column.find_first_not_of(' '), column.size());
        columns.push_back(unescaped(column.substr(first, column.find_last_not_of(' ') + 1 - first)));
    }
    return columns;
}

struct Line {
    std::string place, text;
};

/// The lines of a file without comments, each joined with its continuation lines.
std::vector<Line> readLines(const std::string& file) {
    std::vector<Line> lines;
    std::ifstream stream(OPCMODEL_TEST_DATA "/" + file);
    std::size_t number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        const std::size_t first = line.find_first_not_of(' ');
        if (first == std::string::npos || line == "#" || line.rfind("# ", 0) == 0)
            continue;
        if (first > 0 && !lines.empty())
            lines.back().text += line.substr(line[first] == '<' ? first : first - 1);
        else
            lines.push_back({file + ":" + std::to_string(number), line});
    }
    return lines;
}

/// The names in a file with their texts.
using Definitions = std::vector<std::pair<std::string, std::string>>;

std::string expanded(std::string line, const Definitions& definitions) {
    for (const auto& [name, text] : definitions)
        line = replacedAll(line, name, text);
    return line;
}

} // namespace

std::vector<FileCase> readCases(const std::string& file, std::size_t columns) {
    const auto require = [](bool holds, const std::string& place, const std::string& fault) {
        if (!holds)
            throw std::runtime_error(place + ": " + fault);
    };
    std::vector<FileCase> cases;
    Definitions definitions;
    std::vector<std::string> heading;
    std::string unusedHeading; // its place
    for (const auto& [place, text] : readLines(file)) {
        const std::size_t equals = text.front() == '{' ? text.find("} = ") : std::string::npos;
        if (equals != std::string::npos) {
            definitions.emplace_back(text.substr(0, equals + 1),
                                     expanded(text.substr(equals + 4), definitions));
            continue;
        }
        const std::string line = expanded(text, definitions);
        require(definitions.empty() || line.find('{') == std::string::npos, place, "this name isn't defined");
        if (line.front() == '[' && line.back() == ']') {
            require(unusedHeading.empty(), unusedHeading, "no cases");
            heading = split(line.substr(1, line.size() - 2), {});
            unusedHeading = place;
            continue;
        }
        cases.push_back({place, split(line, heading)});
        require(cases.back().columns.size() == columns, place,
                "there should be " + std::to_string(columns) + " columns");
        unusedHeading.clear();
    }
    require(!cases.empty(), file, "no cases");
    require(unusedHeading.empty(), unusedHeading, "no cases");
    return cases;
}

std::string readCase(const std::string& file) {
    return readCases(file, 1).at(0).columns[0];
}

} // namespace opc::test
