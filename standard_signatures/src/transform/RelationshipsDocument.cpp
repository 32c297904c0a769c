#include "transform/RelationshipsDocument.hpp"

#include "reason/Refusal.hpp"
#include "transform/RelationshipsNamespace.hpp"
#include "xml/Narrow.hpp"

#include <algorithm>

namespace opc::standard_signatures {

namespace {

[[noreturn]] void refuseRelationships(const std::string& reason) {
    throw Refusal(Reason::Code::RelationshipsRefused, "", reason);
}

class Reader final : public PackageDocument {
public:
    explicit Reader(RelationshipsDocument& document) : document(document) {
        constexpr std::size_t USUAL_COUNT = 8;
        document.relationships.reserve(USUAL_COUNT);
        requireUsualSpelling();
    }

    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        const std::u16string_view expected = depth == 0 ? u"Relationships" : u"Relationship";
        if (depth > 1 || element.localName() != expected ||
            !isText(element.namespaceURI(), RELATIONSHIPS_NAMESPACE))
            refuseRelationships("The element " + narrow(element.localName()) + " doesn't belong there");
        if (!element.prefix().empty())
            refuseRelationships("The element " + narrow(element.localName()) + " has a prefix");
        ++depth;
        if (depth == 2)
            add(element);
        else if (element.attributeCount() != 0)
            refuseRelationships("The root element has an attribute");
    }
    void onEnd() override { --depth; }
    void onText(std::u16string_view text) override {
        if (!isLittleSpace(text))
            refuseRelationships("There is text in it, or very much white space");
    }
    void onComment(std::u16string_view text) override {
        if (text.find(u'<') != std::u16string_view::npos)
            refuseRelationships("A comment in it has markup, which not all programs pass over");
    }
    void onInstruction(std::u16string_view, std::u16string_view) override {
        refuseRelationships("There is an instruction to programs in it");
    }

private:
    void add(const model::XmlElement& element) {
        if (document.relationships.size() >= RelationshipsDocument::MOST_RELATIONSHIPS)
            throw Refusal(Reason::Code::BeyondLimit, "",
                          "There are more than " + std::to_string(RelationshipsDocument::MOST_RELATIONSHIPS) +
                              " relationships");
        RelationshipValues values;
        unsigned found = 0;
        for (std::size_t i = 0; i < element.attributeCount(); ++i)
            found |= take(element.attribute(i), values);
        if ((found & ALL_REQUIRED) != ALL_REQUIRED)
            refuseRelationships("A relationship has no Id, Type or Target");
        document.relationships.push_back(std::move(values));
    }

    /// Whether nothing changes when white space is collapsed, as schemas do.
    static bool isCollapsed(std::u16string_view value) {
        char16_t all = 0;
        for (const char16_t c : value) // without a branch, for vector instructions
            all = static_cast<char16_t>(all | (c - u'!'));
        if (all < 0x8000) // only white space, control characters and some rare ones set the highest bit
            return true;
        bool isBehindSpace = true;
        for (const char16_t c : value) {
            if (c == u'\t' || c == u'\r' || c == u'\n' || (c == u' ' && isBehindSpace))
                return false;
            isBehindSpace = c == u' ';
        }
        return !isBehindSpace;
    }

    static bool canBeInID(char16_t c) {
        constexpr std::u16string_view NEVER = u" !\"#$%&'()*+,/:;<=>?@[\\]^`{|}~";
        return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') ||
               NEVER.find(c) == std::u16string_view::npos;
    }

    /// Whether it is a name without a colon, as the type of IDs wants it; not all of Unicode's rules are applied.
    static bool isID(std::u16string_view value) {
        constexpr std::u16string_view NOT_FIRST = u"-.0123456789";
        return !value.empty() && std::all_of(value.begin(), value.end(), canBeInID) &&
               NOT_FIRST.find(value.front()) == std::u16string_view::npos;
    }

    static unsigned take(const model::XmlAttribute& attribute, RelationshipValues& values) {
        const std::u16string_view name =
            attribute.namespaceURI.empty() ? attribute.localName : std::u16string_view();
        const std::u16string_view value = attribute.value;
        if (!isCollapsed(value) || (name == u"Id" && !isID(value)))
            refuseRelationships("The " + narrow(attribute.localName) + " \"" + narrow(value) +
                                "\" isn't the same to every reader");
        constexpr std::size_t LONGEST = 4096; // of a name, which others are compared with
        if (value.size() > LONGEST && (name == u"Id" || name == u"Type"))
            refuseRelationships("The " + narrow(name) + " of a relationship has more than " +
                                std::to_string(LONGEST) + " characters");
        if (name == u"Id")
            values.id = narrow(value);
        else if (name == u"Type")
            values.type = narrow(value);
        else if (name == u"Target")
            values.target = narrow(value);
        else if (name == u"TargetMode" && (value == u"External" || value == u"Internal"))
            values.isExternal = value == u"External";
        else
            refuseRelationships("A relationship has the attribute " + narrow(attribute.localName) +
                                " with the value \"" + narrow(value) + "\"");
        return name == u"Id" ? 1 : name == u"Type" ? 2 : name == u"Target" ? 4 : 0;
    }

    static constexpr unsigned ALL_REQUIRED = 7;

    RelationshipsDocument& document;
    int depth = 0;
};

} // namespace

RelationshipsDocument RelationshipsDocument::read(InputStream& stream, std::uint64_t mostBytes) {
    RelationshipsDocument document;
    Reader(document).read(stream, mostBytes);
    auto& all = document.relationships;
    std::sort(all.begin(), all.end(), [](const RelationshipValues& left, const RelationshipValues& right) {
        return left.id < right.id;
    });
    const auto twin = std::adjacent_find(
        all.begin(), all.end(),
        [](const RelationshipValues& left, const RelationshipValues& right) { return left.id == right.id; });
    if (twin != all.end())
        refuseRelationships("Two relationships have the Id " + twin->id);
    return document;
}

} // namespace opc::standard_signatures
