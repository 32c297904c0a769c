#include "checks/relationships/ValueRules.hpp"

#include "subject/Targets.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/RelationshipRules.hpp>

#include <algorithm>

namespace opc::inspection {

namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// What most Ids are made of.
bool isPlainID(std::string_view id) {
    return !id.empty() && (isLetter(id.front()) || id.front() == '_') &&
           std::all_of(id.begin(), id.end(), [](char c) {
               return isLetter(c) || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.';
           });
}

bool hasBrokenEncoding(std::string_view text) {
    for (std::size_t i = text.find('%'); i != std::string_view::npos; i = text.find('%', i + 1))
        if (i + 2 >= text.size() || !isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2]))
            return true;
    return false;
}

/// A bracket stands only round the address in an authority.
bool hasStrayBracket(const Reference& reference) {
    const auto hasBracket = [](std::string_view text) {
        return text.find_first_of("[]") != std::string_view::npos;
    };
    return hasBracket(reference.path) || hasBracket(reference.query) || hasBracket(reference.fragment);
}

/// A relative path whose first segment has a colon begins as if it had a scheme.
bool hasBadScheme(const Reference& reference) {
    if (reference.hasScheme || reference.hasAuthority)
        return false;
    return reference.path.substr(0, reference.path.find('/')).find(':') != std::string_view::npos;
}

} // namespace

bool isValidID(std::string_view id) {
    if (isPlainID(id))
        return true;
    const std::u16string text = opc::toString(std::string(id), true);
    return model::RelationshipRules::findDefect({text, u"t", u"t", std::nullopt}).empty();
}

std::string defectOfType(std::string_view type) {
    if (!Reference(type).hasScheme)
        return "The Type \"" + std::string(type) + "\" isn't an absolute URI";
    const URIDefect defect = findURIDefect(type, false);
    return defect.what.empty() ? std::string() : "The Type \"" + std::string(type) + "\" has " + defect.what;
}

URIDefect findURIDefect(std::string_view text, bool isLoose) {
    const Reference reference(text);
    if (hasBrokenEncoding(text))
        return {Severity::Error, "a percent sign without two hexadecimal digits"};
    if (hasStrayBracket(reference))
        return {Severity::Error, "a square bracket"};
    if (hasBadScheme(reference))
        return {Severity::Error, "a scheme that can't be one"};
    if (reference.fragment.find('#') != std::string_view::npos)
        return {Severity::Error, "two number signs"};
    if (isLoose)
        return {};
    const std::size_t found = text.find_first_of(" \t\r\n\"<>\\^`{|}");
    if (found == std::string_view::npos)
        return {};
    return {Severity::Warning,
            text[found] == ' ' ? "a blank" : "a character that no URI has: " + std::string(1, text[found])};
}

} // namespace opc::inspection
