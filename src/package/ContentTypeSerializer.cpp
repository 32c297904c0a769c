#include "package/ContentTypeSerializer.hpp"

#include "package/ContentTypeMap.hpp"
#include "package/ContentTypesScanner.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/ReplayedStream.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>

namespace opc::model {

namespace {

/// A stream beyond this size goes to the parser at once, without being held whole.
constexpr std::size_t LARGEST_SCANNED = 16 << 20;

std::u16string readAttribute(const xercesc::DOMElement* element, const XercesString& name) {
    std::u16string value;
    XercesHelper::getElementAttribute(element, name, value);
    return value;
}

ContentType toContentType(const std::u16string& text) {
    if (text.empty())
        throw InvalidPartContent("ContentType is empty");
    return ContentType(text);
}

void addDefault(ContentTypeMap& map, const std::u16string& extension, const std::u16string& contentType) {
    if (extension.empty())
        throw InvalidPartContent("Extension is empty");
    map.addDefault(toLowerASCIIString(extension), toContentType(contentType));
}

PartName toPartName(const std::u16string& text) {
    try {
        return PartName(text);
    } catch (const InvalidPartName&) {
        throw InvalidPartContent("PartName is not a valid part name");
    }
}

void addOverride(ContentTypeMap& map, const std::u16string& partName, const std::u16string& contentType) {
    const PartName name = toPartName(partName);
    map.addOverride(name, toContentType(contentType));
}

} // namespace

ContentTypeSerializer::ContentTypeSerializer()
    : namespaceURI(u"http://schemas.openxmlformats.org/package/2006/content-types"), typesName(u"Types"),
      defaultName(u"Default"), extensionName(u"Extension"), contentTypeName(u"ContentType"),
      overrideName(u"Override"), partNameName(u"PartName") {
}

void ContentTypeSerializer::read(ContentTypeMap& map, InputStream& stream) const {
    map.clear();
    std::vector<unsigned char> bytes;
    ScannedContentTypes scanned;
    ReplayedStream replayed(stream);
    if (replayed.readAhead(bytes, LARGEST_SCANNED) && scanContentTypes(bytes, scanned)) {
        for (const ScannedContentType& entry : scanned.defaults)
            addDefault(map, widen(entry.key), widen(entry.contentType));
        for (const ScannedContentType& entry : scanned.overrides)
            addOverride(map, widen(entry.key), widen(entry.contentType));
    } else {
        parse(map, replayed);
    }
    map.setDirty(false);
}

void ContentTypeSerializer::parse(ContentTypeMap& map, InputStream& stream) const {
    const auto parser = XercesHelper::createParser();
    loadGrammarUnchecked(parser.get(), schemas::CONTENT_TYPES);
    const xercesc::DOMDocument* document = nullptr;
    try {
        document = XercesHelper::readDocumentFromStream(parser.get(), stream, true, {}, {});
    } catch (const InvalidXMLDocument& e) {
        throw InvalidPartContent(e.what());
    }
    const xercesc::DOMElement* root = document->getDocumentElement();
    for (const xercesc::DOMElement* element : XercesHelper::getElements(root, defaultName))
        addDefault(map, readAttribute(element, extensionName), readAttribute(element, contentTypeName));
    for (const xercesc::DOMElement* element : XercesHelper::getElements(root, overrideName))
        addOverride(map, readAttribute(element, partNameName), readAttribute(element, contentTypeName));
}

void ContentTypeSerializer::write(ContentTypeMap& map, OutputStream& stream) const {
    const auto document = XercesHelper::createDocument();
    document->setXmlStandalone(true);
    xercesc::DOMElement* root = XercesHelper::appendElementNS(document.get(), namespaceURI, typesName);
    for (const auto& [extension, entry] : map.getDefaults()) {
        if (entry.references == 0)
            continue;
        xercesc::DOMElement* element = XercesHelper::appendElementNS(root, namespaceURI, defaultName);
        XercesHelper::setElementAttribute(element, extensionName, extension);
        XercesHelper::setElementAttribute(element, contentTypeName, entry.contentType.toString());
    }
    for (const auto& [name, contentType] : map.getOverrides()) {
        xercesc::DOMElement* element = XercesHelper::appendElementNS(root, namespaceURI, overrideName);
        XercesHelper::setElementAttribute(element, partNameName, name.toString());
        XercesHelper::setElementAttribute(element, contentTypeName, contentType.toString());
    }
    try {
        const auto writer = XercesHelper::createPrettyPrintingWriter();
        XercesHelper::writeDocumentToStream(writer.get(), document.get(), stream);
    } catch (const InvalidXMLDocument& e) {
        throw InvalidPartContent(e.what());
    }
    map.setDirty(false);
}

} // namespace opc::model
