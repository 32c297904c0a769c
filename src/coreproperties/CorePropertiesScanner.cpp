#include "coreproperties/CorePropertiesScanner.hpp"

#include "xml/PlainDocument.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>

#include <algorithm>
#include <iterator>
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

/// Whether an attribute declares one of the usual prefixes, for the usual namespace.
bool isUsualDeclaration(const PlainAttribute& attribute) {
    return std::any_of(std::begin(NAMESPACES), std::end(NAMESPACES), [&](const PlainAttribute& usual) {
        return usual.name == attribute.name && usual.value == attribute.value;
    });
}

/// Whether a text is a language in its usual form: that of the country behind it at most.
bool isPlainLanguage(std::string_view text) {
    const auto isSubtag = [](std::string_view subtag) {
        return !subtag.empty() && subtag.size() <= 8 && plain::areAll(subtag, plain::Letter);
    };
    const std::size_t end = std::min(text.find('-'), text.size());
    return isSubtag(text.substr(0, end)) && (end == text.size() || isSubtag(text.substr(end + 1)));
}

class Scan {
public:
    Scan(std::string_view document, CoreProperties& result) : reader(document, texts), properties(result) {}

    bool takeDocument() {
        bool isEmpty = false;
        if (!reader.skipProlog() || !reader.take("<") || reader.takeName() != ROOT ||
            !reader.takeAttributes(declarations, isEmpty) ||
            !std::all_of(declarations.begin(), declarations.end(), isUsualDeclaration) || !isDeclared("cp") ||
            !(isEmpty || takeElements()))
            return false;
        reader.skipSpace();
        return reader.atEnd();
    }

private:
    static constexpr std::string_view ROOT = "cp:coreProperties";
    static constexpr std::string_view DECLARING = "xmlns:";
    static constexpr std::string_view KEYWORDS = "cp:keywords";
    static constexpr std::string_view VALUE = "cp:value";

    bool isDeclared(std::string_view prefix) const {
        return std::any_of(declarations.begin(), declarations.end(), [prefix](const auto& declaration) {
            return declaration.name.substr(DECLARING.size()) == prefix;
        });
    }

    bool takeElements() {
        for (;;) {
            reader.skipSpace();
            if (reader.isAt("</"))
                return reader.takeEndTag(ROOT);
            if (!reader.take("<"))
                return false;
            const std::string_view name = reader.takeName();
            if (std::find(names.begin(), names.end(), name) != names.end() || !takeElement(name))
                return false;
            names.push_back(name);
        }
    }

    bool takeElement(std::string_view name) {
        if (!isDeclared(name.substr(0, name.find(':'))))
            return false;
        if (const TextField* const field = find(TEXT_FIELDS, name))
            return takeTextField(*field);
        if (const TimeField* const field = find(TIME_FIELDS, name))
            return takeTimeField(*field);
        return name == KEYWORDS && takeKeywords();
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

    /// What stands in front of the next tag, if the parser takes every character as itself.
    bool takeText(std::u16string& text) {
        text = toString(std::string(reader.takeText()), true);
        return std::all_of(text.begin(), text.end(),
                           [](char16_t unit) { return plain::isText(unit) && unit != u'>' && unit != u'&'; });
    }

    bool takeTextField(const TextField& field) {
        std::u16string text;
        if (!takeContent(field.name, text) || attributes.size() != 0)
            return false;
        if (field.set)
            (properties.*field.set)(text);
        return true;
    }

    bool takeTimeField(const TimeField& field) {
        std::u16string text;
        if (!takeContent(field.name, text) || attributes.size() != (field.isTyped ? 1 : 0) ||
            !isPlainTime(toASCIIString(text)))
            return false;
        if (field.isTyped && (!isDeclared("xsi") || attributes.begin()->name != "xsi:type" ||
                              attributes.begin()->value != "dcterms:W3CDTF"))
            return false;
        (properties.*field.set)(convertStringToTime(text));
        return true;
    }

    bool takeKeywords() {
        CoreProperties::KeywordList keywords;
        bool isEmpty = false;
        if (!takeKeyword(keywords, isEmpty))
            return false;
        while (!isEmpty && reader.take("<cp:value")) {
            bool isEmptyValue = false;
            if (!takeKeyword(keywords, isEmptyValue) || !(isEmptyValue || reader.takeEndTag(VALUE)))
                return false;
            reader.skipSpace();
        }
        properties.setKeywords(keywords);
        return isEmpty || reader.takeEndTag(KEYWORDS);
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
};

} // namespace

bool scanCoreProperties(std::string_view document, CoreProperties& found) {
    found.clear();
    return Scan(document, found).takeDocument();
}

} // namespace opc::model
