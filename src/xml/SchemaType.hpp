#pragma once

#include "xml/IdleParsers.hpp"

#include <opc/model/XercesGuard.hpp>

#include <xercesc/util/XercesDefs.hpp>

#include <string>

XERCES_CPP_NAMESPACE_BEGIN
class DatatypeValidator;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

/// A simple type of a schema. It checks single values as validation does.
class SchemaType {
public:
    /// @param kind          with the schema; must outlive this object
    /// @param namespaceURI  of the schema
    /// @param localName     of the type
    SchemaType(IdleParsers& kind, const char16_t* namespaceURI, const char16_t* localName);
    SchemaType(const SchemaType&) = delete;
    SchemaType& operator=(const SchemaType&) = delete;
    ~SchemaType();

    bool accepts(const std::u16string& value) const;

private:
    const XercesGuard guard;
    IdleParsers& kind;
    IdleParsers::Owned parser; // has the grammar of the type
    xercesc::DatatypeValidator* validator;
};

} // namespace opc::model
