#include "relationships/RelationshipSerializer.hpp"

#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipTarget.hpp"
#include "relationships/RelationshipsWriter.hpp"
#include "xml/DocumentOutput.hpp"
#include "xml/DocumentPoolReset.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/ReplayedStream.hpp"
#include "xml/UnreadElements.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>
#include <opc/model/XercesString.hpp>

#include <xercesc/dom/DOM.hpp>

#include <algorithm>

namespace opc::model {

namespace {

/// A part beyond this size goes to the parser at once, without being held whole.
constexpr std::size_t LARGEST_SCANNED = 1 << 20;

/// Of memory for relationships. A single one that outlives its package keeps as much.
constexpr std::size_t BLOCK_SIZE = 8 << 10;

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

constexpr char16_t EXTERNAL[] = u"External";

void add(const std::u16string& id, const std::u16string& type, const std::u16string& target,
         const std::u16string& targetMode, RelationshipManager& manager) {
    if (type.empty())
        throw InvalidPartContent("Type is empty");
    readURI(type, "Type is not a valid URI");
    if (target.empty())
        throw InvalidPartContent("Target is empty");

    if (targetMode == EXTERNAL) {
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

} // namespace

/// What Xerces works with.
struct RelationshipSerializer::Xml {
    XercesGuard guard;
    std::unique_ptr<xercesc::DOMLSParser, XercesDeleter> parser;     // made when a part needs it
    std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> writer; // the same
    XercesString namespaceURI{u"http://schemas.openxmlformats.org/package/2006/relationships"};
    XercesString relationshipsName{u"Relationships"};
    XercesString relationshipName{u"Relationship"};
    XercesString idName{u"Id"};
    XercesString typeName{u"Type"};
    XercesString targetName{u"Target"};
    XercesString targetModeName{u"TargetMode"};
};

RelationshipSerializer::RelationshipSerializer() : types(std::make_shared<RelationshipTypes>()) {
}
RelationshipSerializer::~RelationshipSerializer() = default;

RelationshipSerializer::Xml& RelationshipSerializer::xml() {
    if (!made)
        made = std::make_unique<Xml>();
    return *made;
}

void RelationshipSerializer::read(InputStream& stream, RelationshipManager& manager) {
    ReplayedStream replayed(stream);
    const auto document = replayed.readAhead(buffer, LARGEST_SCANNED);
    if (!document || !scanRelationships(*document, scanned)) {
        parse(replayed, manager);
        return;
    }
    // Plain values need no further check: a plain type or target is a URI, and not opaque.
    std::size_t length = 0;
    for (const ScannedRelationship& relationship : scanned)
        length += relationship.id.size() + relationship.target.size();
    const std::size_t room = RelationshipBlock::roomFor(scanned.size(), length);
    if (!block || block->room() < room)
        block = std::make_shared<RelationshipBlock>(std::max(room, BLOCK_SIZE), types);
    RelationshipGroup& group = block->addGroup(manager.getSourceURI(), scanned.size(), length);
    for (const ScannedRelationship& relationship : scanned)
        group.add(block->keep(relationship.id), shareType(relationship.type),
                  block->keep(relationship.target),
                  relationship.targetMode == "External" ? TargetMode::External : TargetMode::Internal);
    group.sortByID();
    manager.take(std::shared_ptr<const RelationshipGroup>(block, &group));
}

std::u16string_view RelationshipSerializer::shareType(std::string_view type) {
    auto found = types->find(type);
    if (found == types->end())
        found = types->emplace(type, widen(type)).first;
    return found->second;
}

void RelationshipSerializer::parse(InputStream& stream, RelationshipManager& manager) {
    Xml& names = xml();
    if (!names.parser) {
        auto parser = XercesHelper::createParser();
        loadGrammarUnchecked(parser.get(), schemas::RELATIONSHIPS);
        names.parser = std::move(parser);
    }
    const DocumentPoolReset reset(names.parser.get());
    const xercesc::DOMDocument* document = nullptr;
    try {
        document = XercesHelper::readDocumentFromStream(names.parser.get(), stream, true, {}, {});
    } catch (const InvalidXMLDocument& e) {
        throw InvalidPartContent(e.what());
    }
    const xercesc::DOMElement* root = document->getDocumentElement();
    const auto elements = XercesHelper::getElements(root, names.relationshipName);
    for (const xercesc::DOMElement* element : elements)
        add(readAttribute(element, names.idName), readAttribute(element, names.typeName),
            readAttribute(element, names.targetName), readAttribute(element, names.targetModeName), manager);
    manager.setUnread(countUnread(root, names.namespaceURI, names.relationshipsName, elements.size()));
}

void RelationshipSerializer::write(const RelationshipManager& manager, OutputStream& stream) {
    if (composePlainRelationships(manager, composed))
        writeDocument(composed, stream);
    else
        writeByXerces(manager, stream);
}

void RelationshipSerializer::writeByXerces(const RelationshipManager& manager, OutputStream& stream) {
    Xml& names = xml();
    const auto document = XercesHelper::createDocument();
    document->setXmlStandalone(true);
    xercesc::DOMElement* root =
        XercesHelper::appendElementNS(document.get(), names.namespaceURI, names.relationshipsName);
    for (const Relationship& relationship : manager.getRelationships({})) {
        xercesc::DOMElement* element =
            XercesHelper::appendElementNS(root, names.namespaceURI, names.relationshipName);
        XercesHelper::setElementAttribute(element, names.idName, relationship.getID());
        XercesHelper::setElementAttribute(element, names.typeName, relationship.getType());
        XercesHelper::setElementAttribute(element, names.targetName, relationship.getTarget());
        if (relationship.getTargetMode() == TargetMode::External)
            XercesHelper::setElementAttribute(element, names.targetModeName, EXTERNAL);
    }
    // One that fails is dropped: it would take the namespace for declared from then on, and leave it out.
    auto writer = names.writer ? std::move(names.writer) : XercesHelper::createPrettyPrintingWriter();
    try {
        XercesHelper::writeDocumentToStream(writer.get(), document.get(), stream);
    } catch (const InvalidXMLDocument& e) {
        throw InvalidPartContent(e.what());
    }
    names.writer = std::move(writer);
}

} // namespace opc::model
