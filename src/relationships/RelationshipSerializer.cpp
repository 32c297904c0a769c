#include "relationships/RelationshipSerializer.hpp"

#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipTarget.hpp"
#include "xml/DocumentPoolReset.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>

namespace opc::model {

namespace {

std::u16string readAttribute(const xercesc::DOMElement* element, const XercesString& name) {
    std::u16string value;
    XercesHelper::getElementAttribute(element, name, value);
    return value;
}

/// The text as a URI; what it is no URI for is said by `message`.
URI readURI(const std::u16string& text, const char* message) {
    try {
        return URI(text);
    } catch (const InvalidURI&) {
        throw InvalidPartContent(message);
    }
}

} // namespace

RelationshipSerializer::RelationshipSerializer()
    : parser(XercesHelper::createParser()), writer(XercesHelper::createPrettyPrintingWriter()),
      namespaceURI(u"http://schemas.openxmlformats.org/package/2006/relationships"),
      relationshipsName(u"Relationships"), relationshipName(u"Relationship"), idName(u"Id"),
      typeName(u"Type"), targetName(u"Target"), targetModeName(u"TargetMode"), externalValue(u"External") {
    loadGrammarUnchecked(parser.get(), schemas::RELATIONSHIPS);
}

RelationshipSerializer::~RelationshipSerializer() = default;

void RelationshipSerializer::read(InputStream& stream, RelationshipManager& manager) {
    const DocumentPoolReset reset(parser.get());
    const xercesc::DOMDocument* document = nullptr;
    try {
        document = XercesHelper::readDocumentFromStream(parser.get(), stream, true, {}, {});
    } catch (const InvalidXMLDocument& e) {
        throw InvalidPartContent(e.what());
    }
    for (const xercesc::DOMElement* element :
         XercesHelper::getElements(document->getDocumentElement(), relationshipName))
        readRelationship(element, manager);
}

void RelationshipSerializer::readRelationship(const xercesc::DOMElement* element,
                                              RelationshipManager& manager) const {
    const std::u16string type = readAttribute(element, typeName);
    if (type.empty())
        throw InvalidPartContent("Type is empty");
    readURI(type, "Type is not a valid URI");
    const std::u16string id = readAttribute(element, idName);
    const bool isExternal = readAttribute(element, targetModeName) == externalValue;
    const std::u16string target = readAttribute(element, targetName);
    if (target.empty())
        throw InvalidPartContent("Target is empty");

    if (isExternal) {
        if (!isIRITarget(target))
            throw InvalidPartContent("Target is not a valid IRI for an external relationship");
        manager.addExternalRelationship(id, type, target);
        return;
    }
    const URI uri = readURI(target, "Target is not a valid URI for an internal relationship");
    if (uri.isOpaque())
        throw InvalidPartContent("Target of an internal relationship cannot be an opaque URI");
    manager.addInternalRelationship(id, type, uri);
}

void RelationshipSerializer::write(const RelationshipManager& manager, OutputStream& stream) {
    const auto document = XercesHelper::createDocument();
    document->setXmlStandalone(true);
    xercesc::DOMElement* root =
        XercesHelper::appendElementNS(document.get(), namespaceURI, relationshipsName);
    for (const Relationship& relationship : manager.getRelationships({})) {
        xercesc::DOMElement* element = XercesHelper::appendElementNS(root, namespaceURI, relationshipName);
        XercesHelper::setElementAttribute(element, idName, relationship.getID());
        XercesHelper::setElementAttribute(element, typeName, relationship.getType());
        XercesHelper::setElementAttribute(element, targetName, relationship.getTarget());
        if (relationship.getTargetMode() == TargetMode::External)
            XercesHelper::setElementAttribute(element, targetModeName, externalValue);
    }
    try {
        XercesHelper::writeDocumentToStream(writer.get(), document.get(), stream);
    } catch (const InvalidXMLDocument& e) {
        // The old one takes the namespace for declared from now on, and would leave it out.
        writer = XercesHelper::createPrettyPrintingWriter();
        throw InvalidPartContent(e.what());
    }
}

} // namespace opc::model
