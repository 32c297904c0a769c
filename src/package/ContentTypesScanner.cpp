#include "package/ContentTypesScanner.hpp"

#include "xml/LongTags.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/PlainURI.hpp"

#include <algorithm>

namespace opc::model {

namespace {

constexpr std::string_view NAMESPACE = "http://schemas.openxmlformats.org/package/2006/content-types";

template <typename Unit>
constexpr bool isAlphanumeric(Unit c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool isPlainExtension(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return isAlphanumeric(c) || c == '-' || c == '_' || c == '~';
    });
}

template <typename Unit>
bool isPlainToken(std::basic_string_view<Unit> text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](Unit c) {
        return isAlphanumeric(c) || c == '-' || c == '.' || c == '+' || c == '_';
    });
}

/// Whether a text is a media type without parameters.
template <typename Unit>
bool isPlainMediaType(std::basic_string_view<Unit> text) {
    const std::size_t slash = text.find('/');
    return slash != std::string_view::npos && isPlainToken(text.substr(0, slash)) &&
           isPlainToken(text.substr(slash + 1));
}

/// Fills an entry from an element with these two attributes and no other.
bool takeEntry(const PlainAttributes& attributes, std::string_view keyName, ScannedContentType& entry) {
    for (const auto& [name, value] : attributes) {
        if (name == keyName)
            entry.key = value;
        else if (name == "ContentType")
            entry.contentType = value;
        else
            return false;
    }
    return isPlainMediaType(entry.contentType);
}

} // namespace

bool scanContentTypes(std::string_view document, ScannedContentTypes& found) {
    found = {};
    if (hasLongTag(document))
        return false;                 // for the parser to refuse
    constexpr std::size_t USUAL = 16; // of each
    found.defaults.reserve(USUAL);
    found.overrides.reserve(USUAL);
    return visitPlainDocument(
        document, "Types", NAMESPACE, found.texts,
        [&found](std::string_view name, const PlainAttributes& attributes) {
            if (name == "Default") {
                ScannedContentType& entry = found.defaults.emplace_back(ScannedContentType{name, {}, {}});
                return takeEntry(attributes, "Extension", entry) && isPlainExtension(entry.key);
            }
            if (name != "Override")
                return false;
            ScannedContentType& entry = found.overrides.emplace_back(ScannedContentType{name, {}, {}});
            return takeEntry(attributes, "PartName", entry) && isPlainURI(entry.key);
        });
}

bool isPlainContentType(std::u16string_view text) {
    return isPlainMediaType(text);
}

} // namespace opc::model
