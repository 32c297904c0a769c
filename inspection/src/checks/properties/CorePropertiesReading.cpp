#include "checks/properties/CorePropertiesReading.hpp"

#include "subject/DocumentReading.hpp"
#include "subject/Names.hpp"

#include <opc/core/Exception.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/physical/MemoryPackage.hpp>

#include <algorithm>

namespace opc::inspection {

namespace {

constexpr std::u16string_view DCTERMS = u"http://purl.org/dc/terms/";

physical::MemoryPackage::Bytes bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

/// Looks at each element of the document.
class FaultFinder final : public model::XmlEvents {
public:
    explicit FaultFinder(DocumentState& state) : state(state) {}

    std::vector<CorePropertiesFault> faults;

private:
    void onStart(const model::XmlElement& element, const model::XmlPlace& behind) override {
        place = behind;
        scopes.push_back(declarations.size());
        for (std::size_t i = 0; i < element.declarationCount(); ++i) {
            const model::XmlNamespaceDeclaration one = element.declaration(i);
            declarations.emplace_back(one.prefix, one.namespaceURI);
        }
        const std::u16string_view name = element.localName();
        const bool isTerm = element.namespaceURI() == DCTERMS;
        const bool isTime = isTerm && (name == u"created" || name == u"modified");
        if (isTerm && !isTime)
            add("M4.3", "The element dcterms:" + narrow(name) + " refines Dublin Core");
        if (element.valueOf(XML_NAMESPACE, u"lang").data() != nullptr && name != u"keywords" &&
            name != u"value")
            add("M4.4", "The element " + narrow(name) + " has the attribute xml:lang");
        checkType(element.valueOf(SCHEMA_INSTANCE, u"type"), isTime, name);
        for (std::size_t i = 0; i < element.attributeCount(); ++i)
            checkAttribute(element.attribute(i));
    }

    /// Other rules tell of `xml:lang` and `xsi:type`.
    void checkAttribute(const model::XmlAttribute& attribute) {
        using Kind = DocumentFault::Kind;
        const bool isXml = attribute.namespaceURI == XML_NAMESPACE && attribute.localName != u"lang";
        const bool isOfSchema = attribute.namespaceURI == SCHEMA_INSTANCE && attribute.localName != u"type";
        if ((isXml || isOfSchema) && state.faults.size() < DocumentState::MOST_FAULTS)
            state.faults.push_back({isXml ? Kind::XmlAttribute : Kind::SchemaInstanceAttribute,
                                    (isXml ? "xml:" : "xsi:") + narrow(attribute.localName), place.line,
                                    place.column});
    }

    void onEnd() override {
        declarations.resize(scopes.back());
        scopes.pop_back();
    }

    void checkType(std::u16string_view type, bool isTime, std::u16string_view name) {
        if (type.data() == nullptr) {
            if (isTime)
                add("M4.5", "The element dcterms:" + narrow(name) + " has no xsi:type");
        } else if (!isTime) {
            add("M4.5", "The element " + narrow(name) + " has the attribute xsi:type");
        } else if (!isW3CDTF(type)) {
            add("M4.5", "The xsi:type of dcterms:" + narrow(name) + " is " + narrow(type));
        }
    }

    /// By the namespace of its prefix, whatever that is.
    bool isW3CDTF(std::u16string_view type) const {
        const std::size_t colon = type.find(u':');
        if (colon == std::u16string_view::npos || type.substr(colon + 1) != u"W3CDTF")
            return false;
        const auto found =
            std::find_if(declarations.rbegin(), declarations.rend(),
                         [&](const auto& declared) { return declared.first == type.substr(0, colon); });
        return found != declarations.rend() && found->second == DCTERMS;
    }

    void add(std::string_view rule, std::string message) {
        if (faults.size() < DocumentState::MOST_FAULTS)
            faults.push_back({rule, std::move(message), place.line, place.column});
    }

    DocumentState& state;
    model::XmlPlace place{1, 1};
    std::vector<std::pair<std::u16string, std::u16string>> declarations; ///< in scope
    std::vector<std::size_t> scopes; ///< how many there were before each element
};

} // namespace

ReadCoreProperties readCoreProperties(const std::string& document) {
    physical::MemoryPackage store;
    store.setContentTypes(bytesOf(
        R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types"><Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/><Default Extension="xml" ContentType="application/vnd.openxmlformats-package.core-properties+xml"/></Types>)"));
    store.setPart(
        u"/_rels/.rels",
        bytesOf(
            R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"><Relationship Id="a" Type="http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties" Target="/core.xml"/></Relationships>)"));
    store.setPart(u"/core.xml", bytesOf(document));
    ReadCoreProperties read;
    try {
        model::Package package(store);
        package.open(interfaces::OpenMode::ReadOnly);
        read.properties = model::PackageHelper::getCoreProperties(package);
    } catch (const Exception& failure) {
        read.failure = failure.what();
        read.details = failure.details();
    }
    return read;
}

std::vector<CorePropertiesFault> findCorePropertiesFaults(const Archive& archive, const PartView& part,
                                                          DocumentState& state) {
    FaultFinder finder(state);
    readDocument(archive, part.items, state, finder);
    if (state.declaresMarkupCompatibility)
        finder.faults.insert(finder.faults.begin(),
                             {"M4.2", "The document has the namespace of markup compatibility", 0, 0});
    return std::move(finder.faults);
}

} // namespace opc::inspection
