#include "checks/security/Formulas.hpp"

#include <algorithm>
#include <iterator>

namespace opc::inspection {

namespace {

constexpr std::string_view REACHING_NAMES[] = {"CALL",     "EXEC",        "HYPERLINK", "IMAGE",
                                               "REGISTER", "REGISTER.ID", "RTD",       "WEBSERVICE"};
constexpr std::size_t LONGEST_FUNCTION_NAME = 40;

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool isOfName(char c) {
    const char u = upper(c);
    return (u >= 'A' && u <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_';
}

/// The function whose name ends in front of `end`; empty if it isn't one of them.
std::string_view functionBefore(std::string_view text, std::size_t end) {
    while (end > 0 && (text[end - 1] == ' ' || text[end - 1] == '\n'))
        --end;
    std::size_t begin = end;
    while (begin > 0 && end - begin <= LONGEST_FUNCTION_NAME && isOfName(text[begin - 1]))
        --begin;
    std::string name(text.substr(begin, end - begin));
    std::transform(name.begin(), name.end(), name.begin(), upper);
    for (const std::string_view prefix :
         {"_XLFN.", "_XLL.", "_XLWS."}) // in front of functions newer than the format
        if (name.compare(0, prefix.size(), prefix) == 0)
            name.erase(0, prefix.size());
    const auto* const found = std::find(std::begin(REACHING_NAMES), std::end(REACHING_NAMES), name);
    return found == std::end(REACHING_NAMES) ? std::string_view() : *found;
}

} // namespace

std::set<std::string_view> reachingFunctions(std::string_view formula) {
    std::set<std::string_view> functions;
    bool isLiteral = false;
    for (std::size_t i = 0; i < formula.size(); ++i) {
        if (formula[i] == '"')
            isLiteral = !isLiteral;
        const std::string_view name =
            !isLiteral && formula[i] == '(' ? functionBefore(formula, i) : std::string_view();
        if (!name.empty())
            functions.insert(name);
    }
    return functions;
}

void FormulaSearch::begin() {
    last.clear();
    found = false;
}

void FormulaSearch::add(std::string_view piece) {
    if (found)
        return;
    if (!last.empty()) { // what is cut in two by the pieces
        last.append(piece.substr(0, 2 * LONGEST_FUNCTION_NAME));
        look(last);
    }
    look(piece);
    last.assign(piece.substr(piece.size() - std::min(piece.size(), 2 * LONGEST_FUNCTION_NAME)));
}

void FormulaSearch::look(std::string_view text) {
    for (std::size_t i = text.find('('); i != std::string_view::npos && !found; i = text.find('(', i + 1))
        found = !functionBefore(text, i).empty();
    // A name can be spelt in references or cut by sections and comments.
    found = found || text.find("&#") != std::string_view::npos || text.find("<!") != std::string_view::npos;
}

} // namespace opc::inspection
