#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>
#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesString.hpp>

#include <memory>
#include <string>

XERCES_CPP_NAMESPACE_BEGIN
class DOMElement;
class DOMLSParser;
class DOMLSSerializer;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

class RelationshipManager;

/// Reads and writes relationships parts, for all sources of an open package one after the other: the schema
/// is compiled once. What a document brings is checked more mildly than what an application creates.
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
    void readRelationship(const xercesc::DOMElement* element, RelationshipManager& manager) const;

    XercesGuard guard;
    std::unique_ptr<xercesc::DOMLSParser, XercesDeleter> parser;
    std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> writer;
    XercesString namespaceURI;
    XercesString relationshipsName;
    XercesString relationshipName;
    XercesString idName;
    XercesString typeName;
    XercesString targetName;
    XercesString targetModeName;
    std::u16string externalValue;
};

} // namespace opc::model
