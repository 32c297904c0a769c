#include "RelationshipsDocument.hpp"

#include "AttributeText.hpp"
#include "MarkupCompatibility.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/RelationshipRules.hpp>
#include <opc/model/RelationshipsVocabulary.hpp>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace opc::physical::lenient {

namespace {

using model::RelationshipRules;
using namespace model::vocabulary::relationships;

/// The namespaces of the format before the standard.
constexpr std::u16string_view OLD_NAMESPACE = u"http://schemas.microsoft.com/package/2005/06/relationships";
constexpr std::u16string_view XSI = u"http://www.w3.org/2001/XMLSchema-instance";
constexpr std::u16string_view CORE_PROPERTIES =
    u"http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";

constexpr char KEPT_IN_FILE[] = "left out, and kept in the file";
constexpr char PASSED_OVER[] = "passed over, and kept in the file";

bool isOurs(std::u16string_view namespaceURI) {
    return namespaceURI == model::vocabulary::relationships::NAMESPACE || namespaceURI == OLD_NAMESPACE;
}

bool isRelationship(const Element& element) {
    return isOurs(element.namespaceURI) && element.localName == RELATIONSHIP;
}

/// Converts a type of the format before the standard to the type of the standard.
void makeTypeOfToday(std::u16string& type) {
    if (type.compare(0, OLD_NAMESPACE.size(), OLD_NAMESPACE) == 0)
        type.replace(0, OLD_NAMESPACE.size(), model::vocabulary::relationships::NAMESPACE.wide());
}

/// The rule that a relationship with this defect breaks.
const char* ruleOf(const std::string& defect) {
    constexpr std::array<std::pair<std::string_view, const char*>, 4> RULES = {{
        {"Id ", "M1.26"},
        {"Type ", "M1.27"},
        {"Target of an internal", "M1.29"},
        {"Target ", "M1.28"},
    }};
    const auto* const rule = std::find_if(RULES.begin(), RULES.end(), [&defect](const auto& entry) {
        return defect.compare(0, entry.first.size(), entry.first) == 0;
    });
    return rule == RULES.end() ? "M1.20" : rule->second;
}

/// A name for a message.
std::string shorten(std::u16string_view name) {
    constexpr std::size_t LONGEST = 60;
    return toUDEString(std::u16string(name.substr(0, LONGEST))) + (name.size() > LONGEST ? "..." : "");
}

/// Whether a document of XML 1.0 can't hold a text that one of XML 1.1 can.
bool hasControls(std::u16string_view text) {
    return std::any_of(text.begin(), text.end(), [](char16_t unit) {
        return unit < u' ' && unit != u'\t' && unit != u'\n' && unit != u'\r';
    });
}

} // namespace

/// Collects the elements that count.
class RelationshipsDocument::Reader {
public:
    Reader(RelationshipsDocument& document, Source source)
        : document(document), markup(document.text.markup()), source(source),
          compatibility(markup, {model::vocabulary::relationships::NAMESPACE, OLD_NAMESPACE}) {}

    void read() {
        takeRoot();
        findUsual();
        const auto& elements = markup.elements();
        for (std::size_t i = 1; i < elements.size(); ++i) {
            if (compatibility.role(i) == MarkupCompatibility::Role::Content && compatibility.parent(i) == 0)
                takeChild(i);
            else
                keepID(elements[i]);
        }
        if (compatibility.ignoresAny())
            add("O1.7", markup.root(), {}, "has content that programs may ignore (markup compatibility)",
                PASSED_OVER);
    }

private:
    void takeRoot() {
        const Element& root = markup.root();
        if (compatibility.role(0) != MarkupCompatibility::Role::Content || !isOurs(root.namespaceURI) ||
            root.localName != RELATIONSHIPS)
            throw Exception("The root isn't a Relationships element.");
        if (root.namespaceURI == OLD_NAMESPACE)
            document.found.push_back(
                {"M1.20", {}, root.line, "has the namespace of 2005/06", "read as its successor", false});
        if (root.hasText)
            add("M1.20", root, {}, "has text between its relationships", PASSED_OVER);
        const std::string undeclared = findUndeclared(root, {});
        if (!undeclared.empty())
            add("M1.20", root, {}, undeclared, PASSED_OVER);
    }

    /// Records which elements contain elements. A relationship must not.
    void findUsual() {
        parents.resize(markup.elements().size());
        for (std::size_t i = 1; i < parents.size(); ++i)
            if (compatibility.role(i) == MarkupCompatibility::Role::Content)
                parents[compatibility.parent(i)] = true;
    }

    void takeChild(std::size_t place) {
        const Element& element = markup.elements()[place];
        if (!isRelationship(element)) {
            leaveOut(element, "M1.20",
                     "has an element that is no relationship: " + shorten(element.localName), {});
            return;
        }
        ReadRelationship relationship = readRelationship(markup, place);
        if (markup.root().namespaceURI == OLD_NAMESPACE)
            makeTypeOfToday(relationship.type);
        const std::string defect = findDefect(place);
        if (!defect.empty()) {
            leaveOut(element, ruleOf(defect), defect, relationship.id);
        } else if (!ids.insert(relationship.id).second) {
            leaveOut(element, "M1.26", "Id stands there twice", relationship.id);
        } else if (isSecondCoreProperties(relationship)) {
            if (document.second == Element::NO_PARENT)
                document.second = place;
            leaveOut(element, "M4.1", "is one more relationship to core properties", relationship.id);
        } else {
            document.taken.push_back(std::move(relationship));
        }
    }

    /// @return empty if there is none
    std::string findDefect(std::size_t place) const {
        const Element& element = markup.elements()[place];
        std::string defect =
            findUndeclared(element, {ID, model::vocabulary::relationships::TYPE, TARGET, TARGET_MODE});
        if (!defect.empty())
            return defect;
        if (parents[place])
            return "has elements in it";
        std::vector<std::u16string> values; // they don't move
        values.reserve(4);
        const auto value = [&](std::u16string_view name) -> std::optional<std::u16string_view> {
            const Attribute* const attribute = markup.findAttribute(element, u"", name);
            if (attribute == nullptr)
                return std::nullopt;
            return values.emplace_back(attribute->value());
        };
        const RelationshipRules::Attributes attributes{
            value(ID), value(model::vocabulary::relationships::TYPE), value(TARGET), value(TARGET_MODE)};
        defect = RelationshipRules::findDefect(attributes);
        if (defect.empty() && std::any_of(values.begin(), values.end(), hasControls))
            return "has a control character";
        return defect;
    }

    /// @return empty if the element has only attributes with these names; otherwise a text about another one
    std::string findUndeclared(const Element& element, const std::vector<std::u16string_view>& names) const {
        for (std::size_t i = 0; i < element.attributeCount; ++i) {
            const Attribute& attribute = markup.allAttributes()[element.firstAttribute + i];
            const bool isNamed = attribute.prefix.empty() &&
                                 std::find(names.begin(), names.end(), attribute.localName) != names.end();
            const bool isOfSchema =
                attribute.is(XSI, u"schemaLocation") || attribute.is(XSI, u"noNamespaceSchemaLocation");
            if (!isNamed && !isOfSchema && !attribute.isDeclaration() && !compatibility.isIgnored(element, i))
                return "has an attribute that isn't declared: " + shorten(attribute.localName);
        }
        return {};
    }

    bool isSecondCoreProperties(const ReadRelationship& relationship) {
        if (source != Source::Package || !relationship.isOfCoreProperties())
            return false;
        return std::exchange(hasCoreProperties, true);
    }

    void leaveOut(const Element& element, const char* rule, const std::string& what,
                  const std::u16string& id) {
        keepID(element);
        add(rule, element, id, what, KEPT_IN_FILE);
    }

    void add(const char* rule, const Element& element, const std::u16string& id, const std::string& what,
             const char* done) {
        document.found.push_back({rule, id, element.line, what, done, true});
        document.hasMore = true;
    }

    void keepID(const Element& element) {
        if (const Attribute* attribute = markup.findAttribute(element, u"", ID))
            document.otherIDs.insert(RelationshipRules::read(attribute->value()));
    }

    RelationshipsDocument& document;
    const Markup& markup;
    const Source source;
    const MarkupCompatibility compatibility;
    std::vector<bool> parents;    // whether an element contains elements
    std::set<std::u16string> ids; // of the relationships
    bool hasCoreProperties = false;
};

bool ReadRelationship::isOfCoreProperties() const {
    return type == CORE_PROPERTIES;
}

RelationshipsDocument::RelationshipsDocument(const Bytes& bytes, Source source) : text(bytes) {
    Reader(*this, source).read();
}

Bytes RelationshipsDocument::view() const {
    std::u16string composed = u"<Relationships";
    addAttribute(composed, u"xmlns", model::vocabulary::relationships::NAMESPACE);
    composed += u">";
    for (const ReadRelationship& relationship : taken) {
        composed += u"<Relationship";
        addAttribute(composed, ID, relationship.id);
        addAttribute(composed, model::vocabulary::relationships::TYPE, relationship.type);
        addAttribute(composed, TARGET, relationship.target);
        if (relationship.isExternal)
            addAttribute(composed, TARGET_MODE, EXTERNAL);
        composed += u"/>";
    }
    const std::string narrow = detail::toUTF8String(composed += u"</Relationships>", true);
    return Bytes(narrow.begin(), narrow.end());
}

ReadRelationship readRelationship(const Markup& markup, std::size_t element) {
    const auto value = [&](std::u16string_view name) {
        const Attribute* const attribute = markup.findAttribute(markup.elements()[element], u"", name);
        return attribute != nullptr ? attribute->value() : std::u16string();
    };
    return {element, RelationshipRules::read(value(ID)),
            RelationshipRules::read(value(model::vocabulary::relationships::TYPE)),
            RelationshipRules::read(value(TARGET)), value(TARGET_MODE) == EXTERNAL.wide()};
}

bool mayRepeatCoreProperties(std::string_view document) {
    const std::string type(CORE_PROPERTIES.begin(), CORE_PROPERTIES.end());
    const std::size_t first = document.find(type);
    const bool isRepeated =
        first != std::string_view::npos && document.find(type, first + type.size()) != std::string_view::npos;
    return isRepeated || document.find('&') != std::string_view::npos; // a reference may be part of the type
}

} // namespace opc::physical::lenient
