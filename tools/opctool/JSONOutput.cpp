#include "JSONOutput.hpp"

#include "TerminalText.hpp"

#include <nlohmann/json.hpp>

#include <sstream>

namespace opctool {

void JSONOutput::add(const nlohmann::ordered_json& value, const std::string& name) {
    goToNext(name);
    std::istringstream lines(escapedJSON(value.dump(2)));
    std::string line;
    std::getline(lines, line);
    stream << line;
    while (std::getline(lines, line)) {
        indent();
        stream << line;
    }
}

void JSONOutput::begin(const std::string& name, const char* opening, char closing) {
    if (!levels.empty())
        goToNext(name);
    stream << opening;
    levels.push_back({closing, true});
}

void JSONOutput::end() {
    const Level ended = levels.back();
    levels.pop_back();
    if (!ended.isEmpty)
        indent();
    stream << ended.closing;
    if (levels.empty())
        stream << '\n';
}

void JSONOutput::goToNext(const std::string& name) {
    stream << (levels.back().isEmpty ? "" : ",");
    levels.back().isEmpty = false;
    indent();
    if (!name.empty())
        stream << '"' << name << "\": ";
}

void JSONOutput::indent() {
    stream << '\n' << std::string(2 * levels.size(), ' ');
}

} // namespace opctool
