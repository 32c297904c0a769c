#include "checks/contenttypes/TypeGrammar.hpp"

#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>

namespace opc::inspection {

namespace {

/// The types of the parts that the standard itself has.
constexpr std::string_view OWN_TYPES[] = {
    RELATIONSHIPS_TYPE,
    CORE_PROPERTIES_TYPE,
    "application/vnd.openxmlformats-package.digital-signature-origin",
    "application/vnd.openxmlformats-package.digital-signature-xmlsignature+xml",
    "application/vnd.openxmlformats-package.digital-signature-certificate",
};

bool isOwnType(std::string_view mediaType) {
    return std::any_of(std::begin(OWN_TYPES), std::end(OWN_TYPES),
                       [mediaType](std::string_view own) { return equalsCaseless(own, mediaType); });
}

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// Whether it has the form of nearly all: two tokens of usual characters.
bool isPlain(std::string_view contentType) {
    const auto isUsual = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
               c == '.' || c == '+' || c == '_';
    };
    const std::size_t slash = contentType.find('/');
    if (slash == 0 || slash == std::string_view::npos || slash + 1 == contentType.size())
        return false;
    return std::all_of(contentType.begin(), contentType.begin() + slash, isUsual) &&
           std::all_of(contentType.begin() + slash + 1, contentType.end(), isUsual);
}

bool isValid(const std::string& contentType) {
    try {
        const model::ContentType valid(opc::toString(contentType, true));
        return true;
    } catch (const model::InvalidContentType&) {
        return false;
    }
}

/// Without what stands between quotes.
std::string withoutQuoted(std::string_view text) {
    std::string rest;
    bool isQuoted = false;
    for (const char c : text) {
        if (c == '"')
            isQuoted = !isQuoted;
        else if (!isQuoted)
            rest += c;
    }
    return rest;
}

/// Whether white space stands at an end, or beside a slash or an equals sign.
bool hasSpaceInside(std::string_view text) {
    if (text.empty() || isSpace(text.front()) || isSpace(text.back()))
        return true;
    for (std::size_t i = 1; i + 1 < text.size(); ++i)
        if ((text[i] == '/' || text[i] == '=') && (isSpace(text[i - 1]) || isSpace(text[i + 1])))
            return true;
    return false;
}

} // namespace

TypeDefect findTypeDefect(const std::string& contentType) {
    if (isPlain(contentType))
        return {};
    const std::string shown = " has the content type \"" + contentType + "\"";
    if (isValid(contentType)) {
        const std::size_t end = contentType.find(';');
        if (end != std::string::npos && isOwnType(trimmed(std::string_view(contentType).substr(0, end))))
            return {"M1.22", shown + ", which can't have parameters"};
        return {};
    }
    if (contentType.empty())
        return {"M1.13", " has an empty content type"};
    const std::string rest = withoutQuoted(contentType);
    if (rest.find('(') != std::string::npos)
        return {"M1.15", shown + " with a comment"};
    if (hasSpaceInside(rest))
        return {"M1.14", shown + " with white space"};
    return {"M1.13", shown + ", which isn't a media type"};
}

} // namespace opc::inspection
