#include "ContentTypeEntries.hpp"

#include "AttributeText.hpp"
#include "MarkupCompatibility.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/ContentTypeRules.hpp>
#include <opc/model/ContentTypesVocabulary.hpp>

#include <algorithm>
#include <tuple>

namespace opc::physical::lenient {

namespace {

using namespace model::vocabulary::content_types;

/// The namespace in which office programs wrote packages before the standard. It means the same.
constexpr std::u16string_view BETA_NAMESPACE = u"http://schemas.microsoft.com/package/2005/06/content-types";
constexpr std::u16string_view SCHEMA_INSTANCE = u"http://www.w3.org/2001/XMLSchema-instance";
constexpr char LEFT_OUT[] = "left out, and kept in the file";

bool isOurs(const Element& element, std::u16string_view name) {
    return element.is(model::vocabulary::content_types::NAMESPACE, name) || element.is(BETA_NAMESPACE, name);
}

bool precedes(const ContentTypeEntry& left, const ContentTypeEntry& right) {
    const auto isLeftOut = [](const ContentTypeEntry& entry) {
        return entry.standing == ContentTypeEntry::Standing::LeftOut;
    };
    return std::make_tuple(left.kind, std::u16string_view(left.key), isLeftOut(left), left.lacksSlash) <
           std::make_tuple(right.kind, std::u16string_view(right.key), isLeftOut(right), right.lacksSlash);
}

/// A value for a message, which mustn't grow with the file.
std::string quote(const std::u16string& value) {
    constexpr std::size_t LONGEST = 200;
    return value.size() <= LONGEST ? toUDEString(value) : toUDEString(value.substr(0, LONGEST)) + "...";
}

/// Describes several findings by the first one, because a document can have very many.
std::string andMore(std::size_t count) {
    return count == 1 ? "" : " and " + std::to_string(count - 1) + " more";
}

} // namespace

std::u16string_view ContentTypeEntry::elementName(Kind kind) {
    return kind == Kind::Default ? std::u16string_view(DEFAULT) : OVERRIDE;
}

std::u16string_view ContentTypeEntry::keyName(Kind kind) {
    return kind == Kind::Default ? std::u16string_view(EXTENSION) : PART_NAME;
}

/// Visits the elements of a document once.
class ContentTypesReader {
public:
    ContentTypesReader(const Markup& markup, model::ContentTypeRules& rules, ContentTypeEntries& result)
        : markup(markup), rules(rules), result(result) {}

    void read() {
        const Element& root = markup.root();
        if (!isOurs(root, TYPES))
            throw Exception("The root isn't that of content types.");
        checkRoot(root);
        const auto& elements = markup.elements();
        const Element* firstOther = nullptr;
        std::size_t others = 0;
        for (std::size_t i = 1; i < elements.size(); ++i) {
            const Element& element = elements[i];
            if (element.depth == 1 && isOurs(element, DEFAULT))
                takeEntry(i, ContentTypeEntry::Kind::Default);
            else if (element.depth == 1 && isOurs(element, OVERRIDE))
                takeEntry(i, ContentTypeEntry::Kind::Override);
            else if (element.depth == 1 && others++ == 0)
                firstOther = &element;
        }
        if (firstOther != nullptr)
            addDisputed("M1.20", firstOther->line,
                        "an element that is no entry: " + quote(std::u16string(firstOther->localName)) +
                            andMore(others),
                        LEFT_OUT);
        settle();
        std::stable_sort(result.found.begin(), result.found.end(),
                         [](const auto& left, const auto& right) { return left.line < right.line; });
    }

private:
    /// Adds something that other programs may read in another way.
    void addDisputed(const char* rule, std::size_t line, std::string what, const char* done) {
        add(rule, line, std::move(what), done);
        ++result.disputed;
    }

    void add(const char* rule, std::size_t line, std::string what, const char* done) {
        result.readAsTheyAre = false;
        result.found.push_back({rule, u"/[Content_Types].xml", line, std::move(what), done});
    }

    /// How a message names the root or an entry.
    std::string describe(const Element& element) const {
        if (element.depth == 0)
            return "the root";
        const bool isDefault = element.localName == DEFAULT;
        const auto kind = isDefault ? ContentTypeEntry::Kind::Default : ContentTypeEntry::Kind::Override;
        const Attribute* const key = markup.findAttribute(element, {}, ContentTypeEntry::keyName(kind));
        const std::string name = key == nullptr ? std::string() : " for \"" + quote(key->value()) + "\"";
        return (isDefault ? "the Default" : "the Override") + name;
    }

    void noteForm(const Element& element) {
        if (!element.prefix.empty() || element.namespaceURI != model::vocabulary::content_types::NAMESPACE)
            result.readAsTheyAre = false;
    }

    void checkRoot(const Element& root) {
        noteForm(root);
        if (root.namespaceURI == BETA_NAMESPACE)
            add("M1.20", root.line, "has the namespace of 2005/06", "read as its successor");
        if (root.hasText)
            addDisputed("M1.20", root.line, "there is text between the entries", LEFT_OUT);
        checkAttributes(root, {});
    }

    void checkAttributes(const Element& element, std::u16string_view keyName) {
        const Attribute* first = nullptr;
        std::size_t count = 0;
        for (const Attribute& attribute : markup.attributes(element)) {
            const bool isKnown = attribute.isDeclaration() ||
                                 attribute.is(SCHEMA_INSTANCE, u"schemaLocation") ||
                                 attribute.is(SCHEMA_INSTANCE, u"noNamespaceSchemaLocation") ||
                                 (!keyName.empty() && attribute.prefix.empty() &&
                                  (attribute.localName == keyName ||
                                   attribute.localName == model::vocabulary::content_types::CONTENT_TYPE));
            if (!isKnown && count++ == 0)
                first = &attribute;
        }
        if (first == nullptr)
            return;
        addDisputed(first->namespaceURI == COMPATIBILITY_NAMESPACE ? "M2.10" : "M1.20", element.line,
                    describe(element) + " has the attribute " + quote(std::u16string(first->localName)) +
                        andMore(count) + ", which it can't have",
                    "passed over, and kept in the file");
    }

    void takeEntry(std::size_t index, ContentTypeEntry::Kind kind) {
        const std::u16string_view keyName = ContentTypeEntry::keyName(kind);
        const Element& element = markup.elements()[index];
        ContentTypeEntry entry{kind, ContentTypeEntry::Standing::LeftOut, false, {}, {}, index, {}};
        noteForm(element);
        const char* const rule = takeValues(entry, element, keyName);
        if (rule != nullptr) {
            addDisputed(rule, element.line, describe(element) + ": " + entry.defect, LEFT_OUT);
        } else {
            entry.standing = ContentTypeEntry::Standing::Repeats;
            checkAttributes(element, keyName);
            if (element.contentEnd != element.startTag.end)
                checkContent(element, entry);
        }
        result.entries.push_back(std::move(entry));
    }

    /// @return the broken rule; null if none is
    const char* takeValues(ContentTypeEntry& entry, const Element& element, std::u16string_view keyName) {
        const bool isDefault = entry.kind == ContentTypeEntry::Kind::Default;
        const char* const rule = isDefault ? "M2.6" : "M2.7";
        const Attribute* const key = markup.findAttribute(element, {}, keyName);
        const Attribute* const contentType =
            markup.findAttribute(element, {}, model::vocabulary::content_types::CONTENT_TYPE);
        if (key != nullptr)
            takeKey(entry, key->value());
        else
            entry.defect = isDefault ? "Extension is missing" : "PartName is missing";
        if (contentType != nullptr)
            entry.contentType = contentType->value();
        if (!entry.defect.empty())
            return rule;
        if (contentType == nullptr) {
            entry.defect = "ContentType is missing";
            return rule;
        }
        entry.defect = rules.findDefectOfContentType(entry.contentType);
        return entry.defect.empty() ? nullptr : "M1.13";
    }

    void takeKey(ContentTypeEntry& entry, const std::u16string& value) {
        if (entry.kind == ContentTypeEntry::Kind::Default) {
            entry.key = toLowerASCIIString(value);
            entry.defect = model::ContentTypeRules::findDefectOfExtension(value);
            return;
        }
        std::u16string name = model::ContentTypeRules::readPartName(value);
        entry.lacksSlash = !name.empty() && name.front() != u'/';
        if (entry.lacksSlash)
            name.insert(name.begin(), u'/');
        entry.key = toLowerASCIIString(name);
        entry.defect = model::ContentTypeRules::findDefectOfPartName(name);
    }

    /// Checks an element that should be empty.
    void checkContent(const Element& element, const ContentTypeEntry& entry) {
        result.readAsTheyAre = false;
        const auto& elements = markup.elements();
        const std::size_t next = entry.element + 1;
        if (element.hasText || (next < elements.size() && elements[next].depth > element.depth))
            addDisputed("M1.20", element.line, describe(element) + " isn't empty",
                        "it was read without what is in it");
    }

    /// Finds the entry that counts among several with the same key.
    void settle() {
        auto& entries = result.entries;
        std::stable_sort(entries.begin(), entries.end(), precedes);
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (entries[i].standing == ContentTypeEntry::Standing::LeftOut)
                continue;
            const bool isFirst =
                i == 0 || entries[i - 1].kind != entries[i].kind || entries[i - 1].key != entries[i].key;
            if (isFirst)
                counting = i;
            settle(entries[i], entries[counting]);
        }
    }

    void settle(ContentTypeEntry& entry, const ContentTypeEntry& first) {
        const Element& element = markup.elements()[entry.element];
        if (&entry == &first)
            entry.standing = ContentTypeEntry::Standing::Counts;
        if (entry.lacksSlash)
            addDisputed("M1.4", element.line, describe(element) + " has no slash in front of the name",
                        &entry == &first ? "read as if it had one"
                                         : "the other Override for the part counts");
        if (&entry == &first || entry.contentType == first.contentType ||
            model::ContentType(entry.contentType) == model::ContentType(first.contentType))
            return;
        const bool wasReadAsItIs = result.readAsTheyAre; // the model ignores it too
        add("M2.5", element.line, describe(element) + " contradicts another one", "the first one counts");
        result.readAsTheyAre = wasReadAsItIs;
    }

    const Markup& markup;
    model::ContentTypeRules& rules;
    ContentTypeEntries& result;
    std::size_t counting = 0;
};

ContentTypeEntries::ContentTypeEntries(const Markup& markup, model::ContentTypeRules& rules) {
    ContentTypesReader(markup, rules, *this).read();
}

const ContentTypeEntry* ContentTypeEntries::findFirst(Kind kind, std::u16string_view key) const {
    const auto precedesKey = [kind](const ContentTypeEntry& entry, std::u16string_view sought) {
        return std::make_tuple(entry.kind, std::u16string_view(entry.key)) < std::make_tuple(kind, sought);
    };
    const auto place = std::lower_bound(entries.begin(), entries.end(), key, precedesKey);
    return place == entries.end() || place->kind != kind || place->key != key ? nullptr : &*place;
}

ContentTypeEntries::Group ContentTypeEntries::groupOf(const ContentTypeEntry& first) const {
    const ContentTypeEntry* const end = entries.data() + entries.size();
    const ContentTypeEntry* const last = std::find_if(&first, end, [&first](const ContentTypeEntry& other) {
        return other.kind != first.kind || other.key != first.key;
    });
    return {&first, last};
}

std::string ContentTypeEntries::toDocument(std::u16string_view additions) const {
    std::u16string document = u"<Types";
    addAttribute(document, u"xmlns", model::vocabulary::content_types::NAMESPACE);
    document += u">";
    for (const ContentTypeEntry& entry : entries) {
        if (entry.standing == Standing::LeftOut)
            continue;
        document.append(u"<").append(ContentTypeEntry::elementName(entry.kind));
        addAttribute(document, ContentTypeEntry::keyName(entry.kind), entry.key);
        addAttribute(document, model::vocabulary::content_types::CONTENT_TYPE, entry.contentType);
        document += u"/>";
    }
    return detail::toUTF8String(document.append(additions).append(u"</Types>"), true);
}

} // namespace opc::physical::lenient
