#include "contenttypes/ContentTypesScanner.hpp"

#include "xml/LongTags.hpp"
#include "xml/PlainCharacters.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/PlainURI.hpp"

#include <opc/model/ContentTypesVocabulary.hpp>

#include <algorithm>
#include <string>

namespace opc::model {

namespace {

using namespace vocabulary::content_types;

bool isPlainExtension(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return plain::is(c, plain::Letter | plain::Digit) || c == '-' || c == '_' || c == '~';
    });
}

bool isPlainToken(std::string_view text) {
    return !text.empty() && plain::areAll(text, plain::Token);
}

/// Whether a text is a media type without parameters.
bool isPlainMediaType(std::string_view text) {
    const std::size_t slash = text.find('/');
    return slash != std::string_view::npos && isPlainToken(text.substr(0, slash)) &&
           isPlainToken(text.substr(slash + 1));
}

/// Fills an entry from an element that has exactly these two attributes.
bool takeEntry(const PlainAttributes& attributes, std::string_view keyName, ScannedContentType& entry) {
    for (const auto& [name, value] : attributes) {
        if (name == keyName)
            entry.key = value;
        else if (name == vocabulary::content_types::CONTENT_TYPE)
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
        document, TYPES, vocabulary::content_types::NAMESPACE, found.texts,
        [&found](std::string_view name, const PlainAttributes& attributes) {
            if (name == DEFAULT) {
                ScannedContentType& entry = found.defaults.emplace_back(ScannedContentType{name, {}, {}});
                return takeEntry(attributes, EXTENSION, entry) && isPlainExtension(entry.key);
            }
            if (name != OVERRIDE)
                return false;
            ScannedContentType& entry = found.overrides.emplace_back(ScannedContentType{name, {}, {}});
            return takeEntry(attributes, PART_NAME, entry) && isPlainURI(entry.key);
        });
}

bool isPlainContentType(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 128; }) &&
           isPlainMediaType(std::string(text.begin(), text.end()));
}

} // namespace opc::model
