#pragma once

#include "xml/EmbeddedSchemas.hpp"

#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesGuard.hpp>

#include <xercesc/util/XercesDefs.hpp>

#include <memory>
#include <string>

XERCES_CPP_NAMESPACE_BEGIN
class DOMLSParser;
class DatatypeValidator;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

/// A simple type of a schema, which single values are put to: the check that validation makes.
class SchemaType {
public:
    /// @param schema  one that imports nothing
    /// @param name    of the type: its namespace, a comma and its local name
    SchemaType(const EmbeddedSchema& schema, const char16_t* name);
    SchemaType(const SchemaType&) = delete;
    SchemaType& operator=(const SchemaType&) = delete;
    ~SchemaType();

    bool accepts(const std::u16string& value) const;

private:
    const XercesGuard guard;
    std::unique_ptr<xercesc::DOMLSParser, XercesDeleter> parser; // has the grammar, which has the type
    xercesc::DatatypeValidator* validator;
};

} // namespace opc::model
