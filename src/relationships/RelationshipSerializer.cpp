#include "relationships/RelationshipSerializer.hpp"

#include "relationships/RelationshipCheck.hpp"
#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipsComposer.hpp"
#include "xml/CollidingIDs.hpp"
#include "xml/ComposeOrSerialize.hpp"
#include "xml/ElementReader.hpp"
#include "xml/LongTags.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/ScanOrParse.hpp"
#include "xml/XmlDocument.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/RelationshipsVocabulary.hpp>

#include <algorithm>
#include <deque>
#include <exception>

namespace opc::model {

namespace {

/// A larger part goes to the parser at once, so that it isn't kept in memory as a whole.
constexpr std::size_t LARGEST_SCANNED_RELATIONSHIPS = 1 << 20;

/// The size of blocks. A single relationship that outlives its package keeps a whole block.
constexpr std::size_t BLOCK_SIZE = 8 << 10;

using namespace vocabulary::relationships;

void throwIfIDsCollide(const RelationshipManager& manager) {
    if (manager.size() <= CollidingIDs::MAXIMUM)
        return;
    CollidingIDs ids;
    manager.visit([&ids](const RelationshipGroup::Values& relationship) {
        if (ids.add(relationship.id))
            throw InvalidPartContent(CollidingIDs::TOO_MANY);
    });
}

/// The relationships that the parser finds, until the document is known to be valid.
class ParsedRelationships {
public:
    /// @param memory  stores the texts
    ParsedRelationships(RelationshipBlock& memory, RelationshipTypes& types, const URI& sourceURI)
        : memory(memory), types(types), sourceURI(sourceURI) {}

    void add(const VisitedElement& element) {
        if (element.isRoot())
            unread += element.is(vocabulary::relationships::NAMESPACE, RELATIONSHIPS) ? 0 : 1;
        else if (!element.isNamed(RELATIONSHIP))
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
            const std::u16string type(element.attribute(vocabulary::relationships::TYPE));
            const std::u16string target(element.attribute(TARGET));
            const TargetMode mode = checkRelationship(type, target, element.attribute(TARGET_MODE));
            found.push_back({memory.keep(element.attribute(ID)), types.share(toASCIIString(type)),
                             memory.keep(target), &sourceURI, mode});
        } catch (InvalidPartContent& e) {
            const std::string id = toUDEString(std::u16string(element.attribute(ID)));
            e.addDetails("relationship " + id + " in line " + std::to_string(element.line()));
            e.setRelationship(id);
            failure = std::current_exception();
        }
    }

    RelationshipBlock& memory;
    RelationshipTypes& types;
    const URI& sourceURI;
    std::deque<RelationshipGroup::Values> found; // before the first bad one
    std::exception_ptr failure;                  // about that one; thrown only if the document is valid
    std::size_t unread = 0;
};

} // namespace

RelationshipSerializer::RelationshipSerializer(std::shared_ptr<DocumentBudget> ofPackage)
    : budget(std::move(ofPackage)), types(std::make_shared<RelationshipTypes>()) {
}
RelationshipSerializer::~RelationshipSerializer() = default;

void RelationshipSerializer::read(InputStream& stream, RelationshipManager& manager) {
    read(stream, manager, LARGEST_SCANNED_RELATIONSHIPS);
}

void RelationshipSerializer::parse(InputStream& stream, RelationshipManager& manager) {
    read(stream, manager, 0);
}

void RelationshipSerializer::read(InputStream& stream, RelationshipManager& manager,
                                  std::size_t largestScanned) {
    DocumentShare share(budget, &XmlLimits::relationships);
    MeteredStream metered(stream, share);
    const auto scan = [&](std::string_view document) {
        PlainTexts texts; // `scanned` points into them
        if (!scanRelationships(document, scanned, texts))
            return false;
        share.addElements(scanned.size() + 1);
        takeScanned(manager);
        return true;
    };
    scanOrParse(metered, buffer, largestScanned, scan,
                [&](InputStream& document) { parse(document, manager, share); });
    manager.keepShare(std::move(share));
}

/// Plain values need no further check: a type is a URI, an internal target a URI that isn't opaque, and an external
/// target an IRI.
void RelationshipSerializer::takeScanned(RelationshipManager& manager) {
    std::size_t length = 0;
    for (const ScannedRelationship& relationship : scanned)
        length += relationship.id.size() + relationship.target.size();
    RelationshipBlock& memory = blockWithRoom(RelationshipBlock::roomFor(scanned.size(), length));
    RelationshipGroup& group = memory.addGroup(manager.getSourceURI(), scanned.size());
    for (const ScannedRelationship& relationship : scanned)
        group.add(memory.keep(relationship.id), types->share(relationship.type),
                  relationship.hasASCIITarget ? memory.keep(relationship.target)
                                              : memory.keep(toString(std::string(relationship.target), true)),
                  relationship.targetMode == EXTERNAL ? TargetMode::External : TargetMode::Internal);
    group.sortByID();
    manager.take(std::shared_ptr<const RelationshipGroup>(block, &group));
}

RelationshipBlock& RelationshipSerializer::blockWithRoom(std::size_t room) {
    if (!block || block->room() < room)
        block = std::make_shared<RelationshipBlock>(std::max(room, BLOCK_SIZE), types);
    return *block;
}

void RelationshipSerializer::parse(InputStream& stream, RelationshipManager& manager, DocumentShare& share) {
    RelationshipBlock& memory = blockWithRoom(1);
    ParsedRelationships found(memory, *types, manager.getSourceURI());
    if (!parser)
        parser = makeElementReader(ElementReader::Kind::Relationships);
    parser->read(stream, [&](const VisitedElement& element) {
        share.addElements(1);
        found.add(element);
    });
    manager.take(std::shared_ptr<const RelationshipGroup>(block, &found.makeGroup()));
    found.throwIfOneIsBad();
    manager.setUnread(found.countUnread());
}

/// Refuses to write what couldn't be read again.
void RelationshipSerializer::write(const RelationshipManager& manager, OutputStream& stream) {
    composeOrSerialize(
        composed, [&](std::string& document) { return composePlainRelationships(manager, document); },
        [&](OutputStream& document) { serialize(manager, document); });
    throwIfTagIsTooLong(composed);
    throwIfIDsCollide(manager);
    writeInPlaceOfOld(composed, manager.size() + 1, DocumentShare(budget, &XmlLimits::relationships), manager,
                      stream);
}

std::string RelationshipSerializer::serialize(const RelationshipManager& manager) {
    std::string document;
    serializeDocument(document, [&](OutputStream& stream) { serialize(manager, stream); });
    return document;
}

void RelationshipSerializer::serialize(const RelationshipManager& manager, OutputStream& stream) {
    const auto document = makeXmlDocument(XmlDocument::Form::Part);
    document->open(vocabulary::relationships::NAMESPACE, RELATIONSHIPS);
    for (const Relationship& relationship : manager.getRelationships({})) {
        document->open(vocabulary::relationships::NAMESPACE, RELATIONSHIP);
        document->setAttribute(ID, relationship.getID());
        document->setAttribute(vocabulary::relationships::TYPE, relationship.getType());
        document->setAttribute(TARGET, relationship.getTarget());
        if (relationship.getTargetMode() == TargetMode::External)
            document->setAttribute(TARGET_MODE, EXTERNAL);
        document->close();
    }
    document->write(stream);
}

} // namespace opc::model
