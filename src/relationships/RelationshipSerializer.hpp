#pragma once

#include "relationships/RelationshipsScanner.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>
#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesString.hpp>

#include <memory>
#include <string>
#include <vector>

XERCES_CPP_NAMESPACE_BEGIN
class DOMLSParser;
class DOMLSSerializer;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

class RelationshipManager;

/// Reads and writes relationships parts, for all sources of an open package one after the other. A part in the
/// plain form that nearly all have is scanned; any other goes to a validating parser, whose schema is compiled
/// once. What a document brings is checked more mildly than what an application creates.
class RelationshipSerializer {
public:
    RelationshipSerializer();
    RelationshipSerializer(const RelationshipSerializer&) = delete;
    RelationshipSerializer& operator=(const RelationshipSerializer&) = delete;
    ~RelationshipSerializer();

    /// Adds the relationships of the document to `manager`; those in front of a bad one are added by then.
    /// @throws InvalidPartContent
    void read(InputStream& stream, RelationshipManager& manager);

    /// Doesn't close the stream, which may hold part of a document after a failure.
    /// @throws InvalidPartContent
    void write(const RelationshipManager& manager, OutputStream& stream);

private:
    void parse(InputStream& stream, RelationshipManager& manager);
    void add(const std::u16string& id, const std::u16string& type, const std::u16string& target,
             const std::u16string& targetMode, RelationshipManager& manager) const;

    XercesGuard guard;
    std::unique_ptr<xercesc::DOMLSParser, XercesDeleter> parser; // made when a part needs it
    std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> writer;
    XercesString namespaceURI;
    XercesString relationshipsName;
    XercesString relationshipName;
    XercesString idName;
    XercesString typeName;
    XercesString targetName;
    XercesString targetModeName;
    std::u16string externalValue;
    std::vector<unsigned char> bytes;         // of the part in hand
    std::vector<ScannedRelationship> scanned; // in `bytes`
};

} // namespace opc::model
