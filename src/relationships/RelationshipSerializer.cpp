#include "relationships/RelationshipSerializer.hpp"

#include "relationships/RelationshipCheck.hpp"
#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipsWriter.hpp"
#include "xml/CollidingIDs.hpp"
#include "xml/DocumentOutput.hpp"
#include "xml/ElementVisits.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"
#include "xml/LongTags.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/ReplayedStream.hpp"
#include "xml/ReusedParser.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>
#include <opc/model/XercesString.hpp>

#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <deque>
#include <exception>

namespace opc::model {

namespace {

/// A part beyond this size goes to the parser at once, without being held whole.
constexpr std::size_t LARGEST_SCANNED = 1 << 20;

/// Of memory for relationships. A single one that outlives its package keeps as much.
constexpr std::size_t BLOCK_SIZE = 8 << 10;

constexpr char16_t EXTERNAL[] = u"External";
constexpr char16_t NAMESPACE[] = u"http://schemas.openxmlformats.org/package/2006/relationships";

void throwIfIDsCollide(const RelationshipManager& manager) {
    if (manager.size() <= CollidingIDs::MAXIMUM)
        return;
    CollidingIDs ids;
    manager.visit([&ids](const RelationshipGroup::Values& relationship) {
        if (ids.add(relationship.id))
            throw InvalidPartContent(CollidingIDs::TOO_MANY);
    });
}

ReusedParser::Owned createRelationshipsParser() {
    auto parser = XercesHelper::createParser();
    loadGrammarUnchecked(parser.get(), schemas::RELATIONSHIPS);
    return parser;
}

/// What the parser finds in a document, until that is known to be valid.
class ParsedRelationships {
public:
    /// @param block  takes the texts
    ParsedRelationships(RelationshipBlock& block, RelationshipTypes& shared, const URI& source)
        : memory(block), types(shared), sourceURI(source) {}

    void add(const VisitedElement& element) {
        if (element.isRoot())
            unread += element.is(NAMESPACE, u"Relationships") ? 0 : 1;
        else if (!element.isNamed(u"Relationship"))
            ++unread;
        else if (!failure)
            addRelationship(element);
    }

    RelationshipGroup& makeGroup() const {
        RelationshipGroup& group = memory.addGroup(sourceURI, found.size());
        for (const RelationshipGroup::Values& values : found)
            group.add(values.id, values.type, values.target, values.targetMode);
        group.sortByID();
        return group;
    }

    void throwIfOneIsBad() const {
        if (failure)
            std::rethrow_exception(failure);
    }

    std::size_t countUnread() const { return unread; }

private:
    void addRelationship(const VisitedElement& element) {
        try {
            const std::u16string type(element.attribute(u"Type"));
            const std::u16string target(element.attribute(u"Target"));
            const TargetMode mode = checkRelationship(type, target, element.attribute(u"TargetMode"));
            found.push_back({memory.keep(element.attribute(u"Id")), types.share(toASCIIString(type)),
                             memory.keep(target), &sourceURI, mode});
        } catch (InvalidPartContent& e) {
            e.addDetails("relationship " + toUDEString(std::u16string(element.attribute(u"Id"))) +
                         " in line " + std::to_string(element.line()));
            failure = std::current_exception();
        }
    }

    RelationshipBlock& memory;
    RelationshipTypes& types;
    const URI& sourceURI;
    std::deque<RelationshipGroup::Values> found; // in front of the first bad one
    std::exception_ptr failure;                  // of that one, which is told if the document is valid
    std::size_t unread = 0;
};

} // namespace

/// What Xerces works with.
struct RelationshipSerializer::Xml {
    XercesGuard guard;
    ReusedParser parser{createRelationshipsParser};
    std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> writer; // made when a part needs it
    XercesString namespaceURI{NAMESPACE};
    XercesString relationshipsName{u"Relationships"};
    XercesString relationshipName{u"Relationship"};
    XercesString idName{u"Id"};
    XercesString typeName{u"Type"};
    XercesString targetName{u"Target"};
    XercesString targetModeName{u"TargetMode"};
};

RelationshipSerializer::RelationshipSerializer(std::shared_ptr<DocumentBudget> ofPackage)
    : budget(std::move(ofPackage)), types(std::make_shared<RelationshipTypes>()) {
}
RelationshipSerializer::~RelationshipSerializer() = default;

RelationshipSerializer::Xml& RelationshipSerializer::xml() {
    if (!made)
        made = std::make_unique<Xml>();
    return *made;
}

void RelationshipSerializer::read(InputStream& stream, RelationshipManager& manager) {
    DocumentShare share(budget, &XmlLimits::relationships);
    MeteredStream metered(stream, share);
    ReplayedStream replayed(metered);
    const auto document = replayed.readAhead(buffer, LARGEST_SCANNED);
    PlainTexts texts; // that `scanned` looks into
    if (!document || !scanRelationships(*document, scanned, texts)) {
        parseCounted(replayed, manager, share);
        manager.keepShare(std::move(share));
        return;
    }
    share.addElements(scanned.size() + 1);
    // Plain values need no further check: a type is a URI, an internal target one that isn't opaque, and an
    // external one an IRI.
    std::size_t length = 0;
    for (const ScannedRelationship& relationship : scanned)
        length += relationship.id.size() + relationship.target.size();
    RelationshipBlock& memory = blockWithRoom(RelationshipBlock::roomFor(scanned.size(), length));
    RelationshipGroup& group = memory.addGroup(manager.getSourceURI(), scanned.size());
    for (const ScannedRelationship& relationship : scanned)
        group.add(memory.keep(relationship.id), types->share(relationship.type),
                  relationship.hasASCIITarget ? memory.keep(relationship.target)
                                              : memory.keep(toString(std::string(relationship.target), true)),
                  relationship.targetMode == "External" ? TargetMode::External : TargetMode::Internal);
    group.sortByID();
    manager.take(std::shared_ptr<const RelationshipGroup>(block, &group));
    manager.keepShare(std::move(share));
}

RelationshipBlock& RelationshipSerializer::blockWithRoom(std::size_t room) {
    if (!block || block->room() < room)
        block = std::make_shared<RelationshipBlock>(std::max(room, BLOCK_SIZE), types);
    return *block;
}

void RelationshipSerializer::parse(InputStream& stream, RelationshipManager& manager) {
    DocumentShare share(budget, &XmlLimits::relationships);
    MeteredStream metered(stream, share);
    parseCounted(metered, manager, share);
    manager.keepShare(std::move(share));
}

void RelationshipSerializer::parseCounted(InputStream& stream, RelationshipManager& manager,
                                          DocumentShare& share) {
    RelationshipBlock& memory = blockWithRoom(1);
    ParsedRelationships found(memory, *types, manager.getSourceURI());
    try {
        xml().parser.use([&](xercesc::DOMLSParser* parser) {
            const ElementVisits visits(parser, [&](const VisitedElement& element) {
                share.addElements(1);
                found.add(element);
            });
            XercesHelper::readDocumentFromStream(parser, stream, true, {}, {});
        });
    } catch (const InvalidXMLDocument& e) {
        throw translated<InvalidPartContent>(e, e.what());
    }
    manager.take(std::shared_ptr<const RelationshipGroup>(block, &found.makeGroup()));
    found.throwIfOneIsBad();
    manager.setUnread(found.countUnread());
}

void RelationshipSerializer::write(const RelationshipManager& manager, OutputStream& stream) {
    if (composePlainRelationships(manager, composed))
        writeCounted(composed, manager, stream);
    else
        writeByXerces(manager, stream);
}

/// What couldn't be read again isn't written.
void RelationshipSerializer::writeCounted(std::string_view document, const RelationshipManager& manager,
                                          OutputStream& stream) {
    if (hasLongTag(document))
        throw InvalidPartContent(TAG_IS_TOO_LONG);
    throwIfIDsCollide(manager);
    manager.keepShare({}); // the old document goes
    DocumentShare share(budget, &XmlLimits::relationships);
    share.addBytes(document.size());
    share.addElements(manager.size() + 1);
    writeDocument(document, stream);
    manager.keepShare(std::move(share));
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
        composed.clear();
        StringOutput written(composed);
        XercesHelper::writeDocumentToStream(writer.get(), document.get(), written);
    } catch (const InvalidXMLDocument& e) {
        throw translated<InvalidPartContent>(e, e.what());
    }
    names.writer = std::move(writer);
    writeCounted(composed, manager, stream);
}

} // namespace opc::model
