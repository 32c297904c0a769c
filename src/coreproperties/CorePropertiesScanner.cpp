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

struct TextField {
    std::string_view name;
    void (CoreProperties::*set)(const std::u16string&); // null: valid, and ignored
};

constexpr TextField TEXT_FIELDS[] = {
    {"cp:category", &CoreProperties::setCategory},
    {"cp:contentStatus", &CoreProperties::setContentStatus},
    {"cp:contentType", nullptr},
    {"dc:creator", &CoreProperties::setCreator},
    {"dc:description", &CoreProperties::setDescription},
    {"dc:identifier", &CoreProperties::setIdentifier},
    {"dc:language", &CoreProperties::setLanguage},
    {"cp:lastModifiedBy", &CoreProperties::setLastModifiedBy},
    {"cp:revision", &CoreProperties::setRevision},
    {"dc:subject", &CoreProperties::setSubject},
    {"dc:title", &CoreProperties::setTitle},
    {"cp:version", &CoreProperties::setVersion},
};

struct TimeField {
    std::string_view name;
    void (CoreProperties::*set)(boost::posix_time::ptime);
    bool isTyped;
};

constexpr TimeField TIME_FIELDS[] = {
    {"dcterms:created", &CoreProperties::setCreated, true},
    {"cp:lastPrinted", &CoreProperties::setLastPrinted, false},
    {"dcterms:modified", &CoreProperties::setModified, true},
};

template <typename Fields>
const auto* find(const Fields& fields, std::string_view name) {
    const auto* const found = std::find_if(std::begin(fields), std::end(fields),
                                           [name](const auto& field) { return field.name == name; });
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
std::u16string withLineFeeds(const std::u16string& text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != u'\r')
            result += text[i];
        else if (text[i + 1] != u'\n') // the text ends in a zero
            result += u'\n';
    return result;
}

class Scan {
public:
    Scan(std::string_view document, CoreProperties& result) : reader(document, texts), properties(result) {}

    bool takeDocument() {
        bool isEmpty = false;
        if (!reader.skipProlog() || !reader.take("<"))
            return false;
        const std::string_view root = reader.takeName();
        if (!reader.takeAttributes(declarations, isEmpty) ||
            !std::all_of(declarations.begin(), declarations.end(), isPlainDeclaration) ||
            !isNamed(root, "cp:coreProperties") || !(isEmpty || takeElements(root)))
            return false;
        reader.skipMisc();
        return reader.atEnd();
    }

    std::size_t countElements() const { return 1 + names.size() + values; }

private:
    static constexpr std::string_view KEYWORDS = "cp:keywords";

    /// @param name  of an attribute of the root
    bool isDeclared(std::string_view name) const {
        return std::any_of(declarations.begin(), declarations.end(),
                           [name](const PlainAttribute& declaration) { return declaration.name == name; });
    }

    /// Whether a name means what it does with its usual prefix.
    bool isNamed(std::string_view name, std::string_view usual) const {
        const std::size_t colon = usual.find(':');
        const std::string_view prefix = usual.substr(0, colon);
        if (name == usual)
            return isDeclared("xmlns:" + std::string(prefix));
        return prefix == "cp" && name == usual.substr(colon + 1) && isDeclared("xmlns");
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

    template <typename Fields>
    const auto* findField(const Fields& fields, std::string_view name) const {
        const auto* const found = std::find_if(std::begin(fields), std::end(fields),
                                               [&](const auto& field) { return isNamed(name, field.name); });
        return found == std::end(fields) ? nullptr : found;
    }

    bool takeElement(std::string_view name) {
        if (const auto* const field = findField(TEXT_FIELDS, name))
            return isFirst(field->name) && takeTextField(name, *field);
        if (const auto* const field = findField(TIME_FIELDS, name))
            return isFirst(field->name) && takeTimeField(name, *field);
        return isNamed(name, KEYWORDS) && isFirst(KEYWORDS) && takeKeywords(name);
    }

    /// Whether no element of this usual name has been taken yet.
    bool isFirst(std::string_view name) {
        if (std::find(names.begin(), names.end(), name) != names.end())
            return false;
        names.push_back(name);
        return true;
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
        text = withLineFeeds(toString(resolved, true)); // references stand for none
        return std::all_of(text.begin(), text.end(), plain::isText);
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
        if (field.isTyped && (!isDeclared("xmlns:xsi") || attributes.begin()->name != "xsi:type" ||
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
            if (!isNamed(value, "cp:value") || !takeKeyword(keywords, isEmptyValue) ||
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
    PlainAttributes declarations;        // of the root
    PlainAttributes attributes;          // of the element in hand
    std::vector<std::string_view> names; // of the elements so far: each may stand once
    std::size_t values = 0;              // elements in that of the keywords
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
