#pragma once

#include "relationships/RelationshipBlock.hpp"
#include "relationships/RelationshipsScanner.hpp"
#include "xml/DocumentBudget.hpp"
#include "xml/ElementReader.hpp"
#include "xml/ReplayedStream.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace opc::model {

class RelationshipManager;

/// Reads and writes relationships parts, for all sources of an open package one after the other. A part in the plain
/// form, which nearly all have, is scanned without Xerces. All others go to a validating parser, whose schema is
/// compiled once. Reading checks relationships less strictly than creating them.
class RelationshipSerializer {
public:
    /// @param budget  what the documents of the package may use together
    explicit RelationshipSerializer(
        std::shared_ptr<DocumentBudget> budget = std::make_shared<DocumentBudget>());
    RelationshipSerializer(const RelationshipSerializer&) = delete;
    RelationshipSerializer& operator=(const RelationshipSerializer&) = delete;
    ~RelationshipSerializer();

    /// Fills `manager`, which is empty, with the relationships of the document, and tells it how many elements were
    /// ignored. After a failure it has the relationships before the bad one.
    /// @throws InvalidPartContent
    void read(InputStream& stream, RelationshipManager& manager);

    /// Reads with the validating parser alone.
    void parse(InputStream& stream, RelationshipManager& manager);

    /// Doesn't close the stream. After a failure the stream may have part of a document.
    /// @throws InvalidPartContent
    void write(const RelationshipManager& manager, OutputStream& stream);

    /// The document as Xerces writes it, without further checks.
    /// @throws InvalidPartContent  a text that XML can't hold
    static std::string serialize(const RelationshipManager& manager);

private:
    RelationshipBlock& blockWithRoom(std::size_t room);
    void read(InputStream& stream, RelationshipManager& manager, std::size_t largestScanned);
    void takeScanned(RelationshipManager& manager);
    void parse(InputStream& stream, RelationshipManager& manager, DocumentShare& share);
    static void serialize(const RelationshipManager& manager, OutputStream& stream);

    std::shared_ptr<DocumentBudget> budget;
    std::unique_ptr<ElementReader> parser;    // made when a part needs it
    ReadAheadBuffer buffer;                   // holds the part in hand
    std::vector<ScannedRelationship> scanned; // in the buffer
    std::string composed;                     // the part in hand, as it is written
    std::shared_ptr<RelationshipTypes> types; // that were scanned
    std::shared_ptr<RelationshipBlock> block; // which the next ones have room in; null at first
};

} // namespace opc::model
