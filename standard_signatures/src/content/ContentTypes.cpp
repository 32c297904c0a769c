#include "content/ContentTypes.hpp"

#include "names/PartNames.hpp"
#include "reason/Refusal.hpp"
#include "xml/Narrow.hpp"
#include "xml/PackageDocument.hpp"

#include <algorithm>
#include <utility>

namespace opc::standard_signatures {

namespace {

constexpr std::u16string_view NAMESPACE = u"http://schemas.openxmlformats.org/package/2006/content-types";

[[noreturn]] void refuseTypes(const std::string& text) {
    throw Refusal(Reason::Code::ContentTypeChanged, "[Content_Types].xml", text);
}

/// Whether everybody reads the same from it.
bool isPlainExtension(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c != '.' && isPathCharacter(c); });
}

} // namespace

class ContentTypes::Reader final : public PackageDocument {
public:
    explicit Reader(ContentTypes& types) : types(types) { requireUsualSpelling(); }

    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        const bool isDefault = element.localName() == u"Default";
        const bool isKnown =
            element.namespaceURI() == NAMESPACE &&
            (depth == 0 ? element.localName() == u"Types" : isDefault || element.localName() == u"Override");
        if (!isKnown || depth > 1)
            refuseTypes("The element " + narrow(element.localName()) +
                        " doesn't belong into the content types");
        if (!element.prefix().empty())
            refuseTypes("The element " + narrow(element.localName()) + " of the content types has a prefix");
        if (depth == 1)
            add(element, isDefault ? u"Extension" : u"PartName", isDefault);
        else if (element.attributeCount() != 0)
            refuseTypes("The root element of the content types has an attribute");
        ++depth;
    }
    void onEnd() override { --depth; }
    void onText(std::u16string_view text) override {
        if (!isLittleSpace(text))
            refuseTypes("The content types have text, or very much white space");
    }
    void onComment(std::u16string_view text) override {
        if (text.find(u'<') != std::u16string_view::npos)
            refuseTypes("A comment in the content types has markup, which not all programs pass over");
    }
    void onInstruction(std::u16string_view, std::u16string_view) override {
        refuseTypes("The content types have an instruction to programs");
    }

private:
    void add(const model::XmlElement& element, std::u16string_view keyName, bool isDefault) {
        const std::u16string_view key = element.valueOf({}, keyName);
        const std::u16string_view type = element.valueOf({}, u"ContentType");
        if (element.attributeCount() != 2 || key.data() == nullptr || type.data() == nullptr)
            refuseTypes("An entry of the content types has other attributes than it must");
        std::string written = narrow(key);
        const auto [place, isNew] =
            (isDefault ? types.defaults : types.overrides).try_emplace(partKeyOf(written));
        if (!isNew)
            refuseTypes("Two content types are given for " + place->first);
        place->second = {decodePartName(std::move(written)), narrow(type)};
    }

    ContentTypes& types;
    int depth = 0;
};

ContentTypes ContentTypes::read(InputStream& stream) {
    ContentTypes types;
    Reader(types).read(stream);
    return types;
}

const std::string* ContentTypes::find(const std::string& partName, const std::string& partKey, bool& isOwn) {
    const auto found = overrides.find(partKey);
    isOwn = found != overrides.end();
    if (isOwn)
        return found->second.written == partName ? found->second.take() : nullptr;
    const std::size_t dot = partName.rfind('.');
    if (dot == std::string::npos || dot < partName.rfind('/'))
        return nullptr;
    const std::string_view extension = std::string_view(partName).substr(dot + 1);
    const auto ofExtension = defaults.find(partKeyOf(extension));
    if (ofExtension == defaults.end())
        return nullptr;
    Entry& entry = ofExtension->second;
    return entry.written == extension || entry.written == keyOf(extension) ? entry.take() : nullptr;
}

std::set<std::string> ContentTypes::unused() const {
    std::set<std::string> types;
    for (const Entries* const entries : {&overrides, &defaults})
        for (const auto& [key, entry] : *entries)
            if (!entry.isFound && (entries == &overrides || key != "rels"))
                types.insert(entry.contentType);
    return types;
}

const std::string* ContentTypes::findOddName() const {
    for (const Entries* const entries : {&overrides, &defaults})
        for (const auto& [key, entry] : *entries)
            if (!entry.isFound &&
                !(entries == &overrides ? isPlainPartName(entry.written) : isPlainExtension(entry.written)))
                return &entry.written;
    return nullptr;
}

} // namespace opc::standard_signatures
