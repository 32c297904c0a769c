#pragma once

#include "relationships/RelationshipBlock.hpp"
#include "relationships/RelationshipsScanner.hpp"
#include "xml/DocumentBudget.hpp"
#include "xml/ReplayedStream.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace opc::model {

class RelationshipManager;

/// Reads and writes relationships parts, for all sources of an open package one after the other. A part in the
/// plain form that nearly all have is scanned; any other goes to a validating parser, whose schema is compiled
/// once. Xerces isn't woken before a part needs it. What a document brings is checked more mildly than what an
/// application creates.
class RelationshipSerializer {
public:
    /// @param budget  what the documents of the package may take, together
    explicit RelationshipSerializer(
        std::shared_ptr<DocumentBudget> budget = std::make_shared<DocumentBudget>());
    RelationshipSerializer(const RelationshipSerializer&) = delete;
    RelationshipSerializer& operator=(const RelationshipSerializer&) = delete;
    ~RelationshipSerializer();

    /// Fills `manager`, which is empty, with the relationships of the document; those in front of a bad one are
    /// there by then. Tells it as well how many elements weren't read.
    /// @throws InvalidPartContent
    void read(InputStream& stream, RelationshipManager& manager);

    /// The same by the validating parser alone, whatever the form.
    void parse(InputStream& stream, RelationshipManager& manager);

    /// Doesn't close the stream, which may hold part of a document after a failure.
    /// @throws InvalidPartContent
    void write(const RelationshipManager& manager, OutputStream& stream);

    /// The document as Xerces writes it, whatever the values, without a further check.
    /// @throws InvalidPartContent  a text that XML can't hold
    std::string serialize(const RelationshipManager& manager);

private:
    struct Xml;

    Xml& xml();
    RelationshipBlock& blockWithRoom(std::size_t room);
    void read(InputStream& stream, RelationshipManager& manager, std::size_t largestScanned);
    void takeScanned(RelationshipManager& manager);
    void parse(InputStream& stream, RelationshipManager& manager, DocumentShare& share);
    void serialize(const RelationshipManager& manager, OutputStream& stream);

    std::shared_ptr<DocumentBudget> budget;
    std::unique_ptr<Xml> made;
    ReadAheadBuffer buffer;                   // holds the part in hand
    std::vector<ScannedRelationship> scanned; // in the buffer
    std::string composed;                     // the part in hand, as it is written
    std::shared_ptr<RelationshipTypes> types; // that were scanned
    std::shared_ptr<RelationshipBlock> block; // which the next ones have room in; null at first
};

} // namespace opc::model
