#include "JSONOutput.hpp"

#include "TerminalText.hpp"

#include <nlohmann/json.hpp>

#include <sstream>
#include <utility>

namespace opctool {

void JSONOutput::add(const nlohmann::ordered_json& value, const std::string& name) {
    goToNext(name);
    const bool onOneLine = layout == Layout::OneLine;
    const std::string text = escapedJSON(
        value.dump(onOneLine ? -1 : 2, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
    if (onOneLine) {
        stream << text;
        return;
    }
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    stream << line;
    while (std::getline(lines, line)) {
        indent();
        stream << line;
    }
}

void JSONOutput::begin(const std::string& name, const char* opening, char closing) {
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
}

void JSONOutput::goToNext(const std::string& name) {
    const std::string& own = name.empty() ? nextName : name;
    if (!levels.empty()) {
        stream << (levels.back().isEmpty ? "" : ",");
        levels.back().isEmpty = false;
        indent();
    }
    if (!own.empty())
        stream << '"' << own << (layout == Layout::OneLine ? "\":" : "\": ");
    nextName.clear();
}

void JSONOutput::indent() {
    if (layout == Layout::Indented)
        stream << '\n' << std::string(2 * levels.size(), ' ');
}

} // namespace opctool
