#include "relationships/RelationshipSerializer.hpp"

#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipTarget.hpp"
#include "xml/DocumentPoolReset.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/ReplayedStream.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>

namespace opc::model {

namespace {

/// A part beyond this size goes to the parser at once, without being held whole.
constexpr std::size_t LARGEST_SCANNED = 1 << 20;

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
    : writer(XercesHelper::createPrettyPrintingWriter()),
      namespaceURI(u"http://schemas.openxmlformats.org/package/2006/relationships"),
      relationshipsName(u"Relationships"), relationshipName(u"Relationship"), idName(u"Id"),
      typeName(u"Type"), targetName(u"Target"), targetModeName(u"TargetMode"), externalValue(u"External") {
}

RelationshipSerializer::~RelationshipSerializer() = default;

void RelationshipSerializer::read(InputStream& stream, RelationshipManager& manager) {
    ReplayedStream replayed(stream);
    if (!replayed.readAhead(bytes, LARGEST_SCANNED) || !scanRelationships(bytes, scanned)) {
        parse(replayed, manager);
        return;
    }
    for (const ScannedRelationship& relationship : scanned)
        add(widen(relationship.id), widen(relationship.type), widen(relationship.target),
            widen(relationship.targetMode), manager);
}

void RelationshipSerializer::parse(InputStream& stream, RelationshipManager& manager) {
    if (!parser) {
        parser = XercesHelper::createParser();
        loadGrammarUnchecked(parser.get(), schemas::RELATIONSHIPS);
    }
    const DocumentPoolReset reset(parser.get());
    const xercesc::DOMDocument* document = nullptr;
    try {
        document = XercesHelper::readDocumentFromStream(parser.get(), stream, true, {}, {});
    } catch (const InvalidXMLDocument& e) {
        throw InvalidPartContent(e.what());
    }
    for (const xercesc::DOMElement* element :
         XercesHelper::getElements(document->getDocumentElement(), relationshipName))
        add(readAttribute(element, idName), readAttribute(element, typeName),
            readAttribute(element, targetName), readAttribute(element, targetModeName), manager);
}

void RelationshipSerializer::add(const std::u16string& id, const std::u16string& type,
                                 const std::u16string& target, const std::u16string& targetMode,
                                 RelationshipManager& manager) const {
    if (type.empty())
        throw InvalidPartContent("Type is empty");
    readURI(type, "Type is not a valid URI");
    if (target.empty())
        throw InvalidPartContent("Target is empty");

    if (targetMode == externalValue) {
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
