#include "coreproperties/CorePropertiesScanner.hpp"

#include "xml/PlainDocument.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace opc::model {

namespace {

/// What a root may declare.
constexpr PlainAttribute NAMESPACES[] = {
    {"xmlns:cp", "http://schemas.openxmlformats.org/package/2006/metadata/core-properties"},
    {"xmlns:dc", "http://purl.org/dc/elements/1.1/"},
    {"xmlns:dcmitype", "http://purl.org/dc/dcmitype/"},
    {"xmlns:dcterms", "http://purl.org/dc/terms/"},
    {"xmlns:xsi", "http://www.w3.org/2001/XMLSchema-instance"},
};

/// The name of an element, with its usual prefix.
struct Name {
    std::string_view prefix;
    std::string_view local;

    bool operator==(const Name& other) const { return local == other.local && prefix == other.prefix; }
};

struct TextField {
    Name name;
    void (CoreProperties::*set)(const std::u16string&); // null: valid, and ignored
};

constexpr TextField TEXT_FIELDS[] = {
    {{"cp", "category"}, &CoreProperties::setCategory},
    {{"cp", "contentStatus"}, &CoreProperties::setContentStatus},
    {{"cp", "contentType"}, nullptr},
    {{"dc", "creator"}, &CoreProperties::setCreator},
    {{"dc", "description"}, &CoreProperties::setDescription},
    {{"dc", "identifier"}, &CoreProperties::setIdentifier},
    {{"dc", "language"}, &CoreProperties::setLanguage},
    {{"cp", "lastModifiedBy"}, &CoreProperties::setLastModifiedBy},
    {{"cp", "revision"}, &CoreProperties::setRevision},
    {{"dc", "subject"}, &CoreProperties::setSubject},
    {{"dc", "title"}, &CoreProperties::setTitle},
    {{"cp", "version"}, &CoreProperties::setVersion},
};

struct TimeField {
    Name name;
    void (CoreProperties::*set)(boost::posix_time::ptime);
    bool isTyped;
};

constexpr TimeField TIME_FIELDS[] = {
    {{"dcterms", "created"}, &CoreProperties::setCreated, true},
    {{"cp", "lastPrinted"}, &CoreProperties::setLastPrinted, false},
    {{"dcterms", "modified"}, &CoreProperties::setModified, true},
};

constexpr Name ROOT = {"cp", "coreProperties"};
constexpr Name KEYWORDS = {"cp", "keywords"};
constexpr Name KEYWORD = {"cp", "value"};

template <typename Fields, typename Key>
const auto* find(const Fields& fields, const Key& name) {
    const auto* const found = std::find_if(std::begin(fields), std::end(fields),
                                           [&](const auto& field) { return field.name == name; });
    return found == std::end(fields) ? nullptr : found;
}

/// Whether an attribute of the root declares a usual namespace, or one that core properties may have besides.
bool isPlainDeclaration(const PlainAttribute& attribute) {
    if (attribute.name == "xmlns")
        return attribute.value == NAMESPACES[0].value;
    const PlainAttribute* const usual = find(NAMESPACES, attribute.name);
    if (usual != nullptr)
        return usual->value == attribute.value;
    return declaresPrefix(attribute) &&
           attribute.value != "http://schemas.openxmlformats.org/markup-compatibility/2006"; // [M4.2]
}

/// Whether a text is a language in its usual form: that of the country behind it at most.
bool isPlainLanguage(std::string_view text) {
    const auto isSubtag = [](std::string_view subtag) {
        return !subtag.empty() && subtag.size() <= 8 && plain::areAll(subtag, plain::Letter);
    };
    const std::size_t end = std::min(text.find('-'), text.size());
    return isSubtag(text.substr(0, end)) && (end == text.size() || isSubtag(text.substr(end + 1)));
}

/// Makes one line feed of each end of a line (XML 1.0 section 2.11).
void normaliseLineEnds(std::string& text) {
    std::size_t length = text.find('\r');
    if (length == std::string::npos)
        return;
    for (std::size_t i = length; i < text.size(); ++i)
        if (text[i] != '\r')
            text[length++] = text[i];
        else if (text[i + 1] != '\n') // the text ends in a zero
            text[length++] = '\n';
    text.resize(length);
}

class Scan {
public:
    Scan(std::string_view document, CoreProperties& result) : reader(document, texts), properties(result) {
        names.reserve(std::size(TEXT_FIELDS) + std::size(TIME_FIELDS) + 1);
    }

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

    std::size_t countElements() const { return 1 + names.size() + values; }

private:
    static constexpr std::string_view DECLARING = "xmlns";

    /// Whether the root declares a prefix, or the namespace of names without one.
    bool isDeclared(std::string_view prefix) const {
        return std::any_of(declarations.begin(), declarations.end(), [prefix](const auto& declaration) {
            const std::string_view declared = declaration.name.substr(DECLARING.size());
            return prefix.empty() ? declared.empty() : !declared.empty() && declared.substr(1) == prefix;
        });
    }

    /// What a name in the document means; no usual name if its prefix isn't declared.
    Name nameOf(std::string_view written) const {
        const std::size_t colon = written.find(':');
        if (colon == std::string_view::npos)
            return {isDeclared({}) ? ROOT.prefix : std::string_view(), written};
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
        if (std::find(names.begin(), names.end(), name) != names.end())
            return false;
        names.push_back(name);
        if (const TextField* const field = find(TEXT_FIELDS, name))
            return takeTextField(written, *field);
        if (const TimeField* const field = find(TIME_FIELDS, name))
            return takeTimeField(written, *field);
        return name == KEYWORDS && takeKeywords(written);
    }

    /// The rest of an element whose name has been taken.
    bool takeContent(std::string_view name, std::u16string& text) {
        bool isEmpty = false;
        if (!reader.takeAttributes(attributes, isEmpty))
            return false;
        if (isEmpty)
            return true;
        return takeText(text) && reader.takeEndTag(name);
    }

    /// What stands in front of the next tag, as the parser gives it.
    bool takeText(std::u16string& text) {
        const std::string_view written = reader.takeText();
        std::string resolved;
        if (written.find('>') != std::string_view::npos || !resolveReferences(written, resolved))
            return false;
        normaliseLineEnds(resolved); // references stand for none
        text = toString(resolved, true);
        return std::all_of(text.begin(), text.end(), [](char16_t unit) { return plain::isText(unit); });
    }

    bool takeTextField(std::string_view name, const TextField& field) {
        std::u16string text;
        if (!takeContent(name, text) || attributes.size() != 0)
            return false;
        if (field.set)
            (properties.*field.set)(text);
        return true;
    }

    bool takeTimeField(std::string_view name, const TimeField& field) {
        std::u16string text;
        if (!takeContent(name, text) || attributes.size() != (field.isTyped ? 1 : 0) ||
            !isPlainDateTime(toASCIIString(text)))
            return false;
        if (field.isTyped && (!isDeclared("xsi") || attributes.begin()->name != "xsi:type" ||
                              attributes.begin()->value != "dcterms:W3CDTF"))
            return false;
        (properties.*field.set)(convertStringToTime(text));
        return true;
    }

    bool takeKeywords(std::string_view name) {
        CoreProperties::KeywordList keywords;
        bool isEmpty = false;
        if (!takeKeyword(keywords, isEmpty))
            return false;
        while (!isEmpty && !reader.isAt("</")) {
            const std::string_view value = reader.take("<") ? reader.takeName() : std::string_view();
            bool isEmptyValue = false;
            if (!(nameOf(value) == KEYWORD) || !takeKeyword(keywords, isEmptyValue) ||
                !(isEmptyValue || reader.takeEndTag(value)))
                return false;
            ++values;
            reader.skipSpace();
        }
        properties.setKeywords(keywords);
        return isEmpty || reader.takeEndTag(name);
    }

    /// What stands behind the name of an element with a keyword: its language, and its text, which loses white
    /// space at its end.
    bool takeKeyword(CoreProperties::KeywordList& keywords, bool& isEmpty) {
        if (!reader.takeAttributes(attributes, isEmpty) || attributes.size() > 1)
            return false;
        auto& [keyword, language] = keywords.emplace_back();
        if (attributes.size() == 1) {
            const auto& [name, value] = *attributes.begin();
            if (name != "xml:lang" || !isPlainLanguage(value))
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
    PlainAttributes attributes;   // of the element in hand
    std::vector<Name> names;      // of the elements so far: each may stand once
    std::size_t values = 0;       // elements in that of the keywords
};

} // namespace

bool scanCoreProperties(std::string_view document, CoreProperties& found, std::size_t& elements) {
    found.clear();
    Scan scan(document, found);
    const bool isTaken = scan.takeDocument();
    elements = scan.countElements();
    return isTaken;
}

} // namespace opc::model
