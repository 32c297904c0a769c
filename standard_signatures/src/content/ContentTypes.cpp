#include "content/ContentTypes.hpp"

#include "names/PartNames.hpp"
#include "reason/Refusal.hpp"
#include "xml/Narrow.hpp"
#include "xml/PackageDocument.hpp"

namespace opc::standard_signatures {

namespace {

constexpr std::u16string_view NAMESPACE = u"http://schemas.openxmlformats.org/package/2006/content-types";
constexpr std::uint64_t MOST_BYTES = 32U << 20;

[[noreturn]] void refuseTypes(const std::string& text) {
    throw Refusal(Reason::Code::ContentTypeChanged, "[Content_Types].xml", text);
}

/// Whether everybody reads the same from it.
bool isExtension(std::string_view text) {
    return !text.empty() && text.find_first_of("./\\% \t\r\n") == std::string_view::npos;
}

} // namespace

class ContentTypes::Reader final : public PackageDocument {
public:
    explicit Reader(ContentTypes& types) : types(types) {}

    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        const bool isDefault = element.localName() == u"Default";
        const bool isKnown =
            element.namespaceURI() == NAMESPACE &&
            (depth == 0 ? element.localName() == u"Types" : isDefault || element.localName() == u"Override");
        if (!isKnown || depth > 1)
            refuseTypes("The element " + narrow(element.localName()) +
                        " doesn't belong into the content types");
        if (depth == 1)
            add(element, isDefault ? u"Extension" : u"PartName", isDefault);
        else if (element.attributeCount() != 0)
            refuseTypes("The root element of the content types has an attribute");
        ++depth;
    }
    void onEnd() override { --depth; }
    void onText(std::u16string_view text) override {
        if (text.find_first_not_of(u" \t\r\n") != std::u16string_view::npos)
            refuseTypes("The content types have text");
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
        const std::string written = narrow(key);
        if (isDefault ? !isExtension(written) : !isPlainPartName(written))
            refuseTypes("\"" + written +
                        (isDefault ? "\" isn't an extension" : "\" isn't the name of a part"));
        const std::string name = keyOf(decodePartName(written));
        if (!(isDefault ? types.defaults : types.overrides).emplace(name, narrow(type)).second)
            refuseTypes("Two content types are given for " + name);
    }

    ContentTypes& types;
    int depth = 0;
};

ContentTypes ContentTypes::read(InputStream& stream) {
    ContentTypes types;
    Reader(types).read(stream, MOST_BYTES);
    return types;
}

const std::string* ContentTypes::find(std::string_view partName) const {
    const std::string key = keyOf(partName);
    if (const auto found = overrides.find(key); found != overrides.end())
        return &found->second;
    const std::size_t dot = key.rfind('.');
    if (dot == std::string::npos || dot < key.rfind('/'))
        return nullptr;
    const auto found = defaults.find(key.substr(dot + 1));
    return found == defaults.end() ? nullptr : &found->second;
}

} // namespace opc::standard_signatures
