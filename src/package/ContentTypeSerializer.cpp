#include "package/ContentTypeSerializer.hpp"

#include "package/ContentTypeMap.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>

namespace opc::model {

namespace {

ContentType readContentType(const xercesc::DOMElement* element, const XercesString& attribute) {
    std::u16string text;
    XercesHelper::getElementAttribute(element, attribute, text);
    if (text.empty())
        throw InvalidPartContent("ContentType is empty");
    return ContentType(text);
}

std::u16string readExtension(const xercesc::DOMElement* element, const XercesString& attribute) {
    std::u16string text;
    XercesHelper::getElementAttribute(element, attribute, text);
    if (text.empty())
        throw InvalidPartContent("Extension is empty");
    return toLowerASCIIString(text);
}

PartName readPartName(const xercesc::DOMElement* element, const XercesString& attribute) {
    std::u16string text;
    XercesHelper::getElementAttribute(element, attribute, text);
    try {
        return PartName(text);
    } catch (const InvalidPartName&) {
        throw InvalidPartContent("PartName is not a valid part name");
    }
}

} // namespace

ContentTypeSerializer::ContentTypeSerializer()
    : namespaceURI(u"http://schemas.openxmlformats.org/package/2006/content-types"), typesName(u"Types"),
      defaultName(u"Default"), extensionName(u"Extension"), contentTypeName(u"ContentType"),
      overrideName(u"Override"), partNameName(u"PartName") {
}

void ContentTypeSerializer::read(ContentTypeMap& map, InputStream& stream) const {
    map.clear();
    const auto parser = XercesHelper::createParser();
    loadGrammarUnchecked(parser.get(), schemas::CONTENT_TYPES);
    const xercesc::DOMDocument* document = nullptr;
    try {
        document = XercesHelper::readDocumentFromStream(parser.get(), stream, true, {}, {});
    } catch (const InvalidXMLDocument& e) {
        throw InvalidPartContent(e.what());
    }

    const xercesc::DOMElement* root = document->getDocumentElement();
    for (const xercesc::DOMElement* element : XercesHelper::getElements(root, defaultName)) {
        const std::u16string extension = readExtension(element, extensionName);
        map.addDefault(extension, readContentType(element, contentTypeName));
    }
    for (const xercesc::DOMElement* element : XercesHelper::getElements(root, overrideName)) {
        const PartName name = readPartName(element, partNameName);
        map.addOverride(name, readContentType(element, contentTypeName));
    }
    map.setDirty(false);
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
