#include "coreproperties/CorePropertiesScanner.hpp"

#include "coreproperties/CorePropertiesVocabulary.hpp"
#include "xml/PlainDocument.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/CorePropertyField.hpp>

#include <algorithm>
#include <bitset>
#include <string>

namespace opc::model {

namespace {

using namespace vocabulary::core_properties;

/// What a name in a document means: a usual prefix, or none if it isn't usual, and the local name.
struct Name {
    std::string_view prefix;
    std::string_view local;

    bool operator==(std::string_view qualified) const {
        const std::size_t colon = prefix.size();
        return qualified.size() == colon + 1 + local.size() && qualified[colon] == ':' &&
               qualified.substr(colon + 1) == local && qualified.substr(0, colon) == prefix;
    }
};

constexpr std::string_view DECLARING = "xmlns";

/// Whether an attribute of the root declares a usual namespace, or another one that core properties may have.
bool isPlainDeclaration(const PlainAttribute& attribute) {
    if (attribute.name == DECLARING)
        return attribute.value == NAMESPACES[0].uri;
    for (const auto& [prefix, uri] : NAMESPACES)
        if (Name{DECLARING, prefix} == attribute.name)
            return attribute.value == uri;
    return declaresPrefix(attribute) && attribute.value != MARKUP_COMPATIBILITY; // [M4.2]
}

/// Whether a text is a language in its usual form: a language code, perhaps with a country code.
bool isPlainLanguage(std::string_view text) {
    const auto isSubtag = [](std::string_view subtag) {
        return !subtag.empty() && subtag.size() <= 8 && plain::areAll(subtag, plain::Letter);
    };
    const std::size_t end = std::min(text.find('-'), text.size());
    return isSubtag(text.substr(0, end)) && (end == text.size() || isSubtag(text.substr(end + 1)));
}

/// Replaces each line end by a line feed (XML 1.0 section 2.11).
void normaliseLineEnds(std::string& text) {
    std::size_t length = text.find('\r');
    if (length == std::string::npos)
        return;
    for (std::size_t i = length; i < text.size(); ++i)
        if (text[i] != '\r')
            text[length++] = text[i];
        else if (text[i + 1] != '\n') // a null character follows the last one
            text[length++] = '\n';
    text.resize(length);
}

class PropertiesScan {
public:
    PropertiesScan(std::string_view document, CoreProperties& properties)
        : reader(document, texts), properties(properties) {}

    bool takeDocument() {
        bool isEmpty = false;
        if (!reader.skipProlog() || !reader.take("<"))
            return false;
        const std::string_view root = reader.takeName();
        if (!reader.takeAttributes(declarations, isEmpty) ||
            !std::all_of(declarations.begin(), declarations.end(), isPlainDeclaration) ||
            !(nameOf(root) == ROOT) || !(isEmpty || takeElements(root)))
            return false;
        reader.skipMisc();
        return reader.atEnd();
    }

    std::size_t countElements() const { return 1 + seen.count() + values; }

private:
    /// Whether the root declares a prefix, or the namespace of names without a prefix.
    bool isDeclared(std::string_view prefix) const {
        return std::any_of(declarations.begin(), declarations.end(), [prefix](const auto& declaration) {
            const std::string_view declared = declaration.name.substr(DECLARING.size());
            return prefix.empty() ? declared.empty() : !declared.empty() && declared.substr(1) == prefix;
        });
    }

    /// The meaning of a name in the document. The name isn't usual if its prefix isn't declared.
    Name nameOf(std::string_view written) const {
        const std::size_t colon = written.find(':');
        if (colon == std::string_view::npos)
            return {isDeclared({}) ? prefixOf(ROOT) : std::string_view(), written};
        const std::string_view prefix = written.substr(0, colon);
        return {isDeclared(prefix) ? prefix : std::string_view(), written.substr(colon + 1)};
    }

    bool takeElements(std::string_view root) {
        for (;;) {
            reader.skipMisc();
            if (reader.isAt("</"))
                return reader.takeEndTag(root);
            if (!reader.take("<") || !takeElement(reader.takeName()))
                return false;
        }
    }

    bool takeElement(std::string_view written) {
        const Name name = nameOf(written);
        const auto& fields = CorePropertyField::all();
        const auto* const field =
            std::find_if(fields.begin(), fields.end(),
                         [&](const CorePropertyField& each) { return name == each.element; });
        const auto place = static_cast<std::size_t>(field - fields.begin());
        if (seen.test(place)) // each may occur once
            return false;
        seen.set(place);
        if (field != fields.end())
            return field->visit(properties, [&](auto& value) { return takeValue(written, *field, value); });
        std::u16string ignored;
        return name == vocabulary::core_properties::CONTENT_TYPE && takeContent(written, ignored) &&
               attributes.size() == 0;
    }

    /// The rest of an element whose name was already taken.
    bool takeContent(std::string_view name, std::u16string& text) {
        bool isEmpty = false;
        if (!reader.takeAttributes(attributes, isEmpty))
            return false;
        if (isEmpty)
            return true;
        return takeText(text) && reader.takeEndTag(name);
    }

    /// The text before the next tag, as the parser would give it.
    bool takeText(std::u16string& text) {
        const std::string_view written = reader.takeText();
        std::string resolved;
        if (written.find('>') != std::string_view::npos || !resolveReferences(written, resolved))
            return false;
        normaliseLineEnds(resolved); // references don't produce line ends here
        text = toString(resolved, true);
        return std::all_of(text.begin(), text.end(), [](char16_t unit) { return plain::isText(unit); });
    }

    /// Takes the rest of a field's element.
    /// @param name  the name in the document
    /// @{
    bool takeValue(std::string_view name, const CorePropertyField& /*field*/, CoreProperties::Text& text) {
        text.emplace();
        return takeContent(name, *text) && attributes.size() == 0;
    }

    bool takeValue(std::string_view name, const CorePropertyField& field, CoreProperties::Time& time) {
        const bool isTyped = field.attribute == CorePropertyField::Attribute::Type;
        std::u16string text;
        if (!takeContent(name, text) || attributes.size() != (isTyped ? 1 : 0) ||
            !isPlainDateTime(toASCIIString(text)))
            return false;
        if (isTyped && !(isDeclared("xsi") && attributes.begin()->name == vocabulary::core_properties::TYPE &&
                         attributes.begin()->value == W3CDTF))
            return false;
        time = convertStringToTime(text);
        return true;
    }

    bool takeValue(std::string_view name, const CorePropertyField& /*field*/,
                   CoreProperties::Keywords& keywords) {
        bool isEmpty = false;
        keywords.emplace();
        if (!takeKeyword(*keywords, isEmpty))
            return false;
        while (!isEmpty && !reader.isAt("</")) {
            const std::string_view value = reader.take("<") ? reader.takeName() : std::string_view();
            bool isEmptyValue = false;
            if (!(nameOf(value) == KEYWORD) || !takeKeyword(*keywords, isEmptyValue) ||
                !(isEmptyValue || reader.takeEndTag(value)))
                return false;
            ++values;
            reader.skipSpace();
        }
        return isEmpty || reader.takeEndTag(name);
    }
    /// @}

    /// Takes what follows the name of an element with a keyword: its language and its text, without white space at
    /// its end.
    bool takeKeyword(CoreProperties::KeywordList& keywords, bool& isEmpty) {
        if (!reader.takeAttributes(attributes, isEmpty) || attributes.size() > 1)
            return false;
        auto& [keyword, language] = keywords.emplace_back();
        if (attributes.size() == 1) {
            const auto& [name, value] = *attributes.begin();
            if (name != LANGUAGE || !isPlainLanguage(value))
                return false;
            language = widen(value);
        }
        if (isEmpty)
            return true;
        if (!takeText(keyword))
            return false;
        keyword.erase(keyword.find_last_not_of(u" \n\t") + 1);
        return true;
    }

    PlainTexts texts; // of attributes
    PlainReader reader;
    CoreProperties& properties;
    PlainAttributes declarations; // of the root
    PlainAttributes attributes;   // of the current element
    std::size_t values = 0;       // elements in the element of keywords

    /// The fields found so far, and then the ignored one.
    std::bitset<std::tuple_size_v<std::decay_t<decltype(CorePropertyField::all())>> + 1> seen;
};

} // namespace

bool scanCoreProperties(std::string_view document, CoreProperties& found, std::size_t& elements) {
    found.clear();
    PropertiesScan scan(document, found);
    const bool isTaken = scan.takeDocument();
    elements = scan.countElements();
    return isTaken;
}

} // namespace opc::model
