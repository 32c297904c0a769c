#pragma once

#include <memory>
#include <string>

namespace opc::model {

/// A simple type of a schema. It checks single values as validation does, for one thread at a time.
class SchemaType {
public:
    enum class Name {
        AnyURI,      ///< xs:anyURI
        ID,          ///< xs:ID
        ContentType, ///< ST_ContentType of the content types stream
    };

    SchemaType() = default;
    SchemaType(const SchemaType&) = delete;
    SchemaType& operator=(const SchemaType&) = delete;
    virtual ~SchemaType() = default;

    virtual bool accepts(const std::u16string& value) const = 0;
};

std::unique_ptr<SchemaType> makeSchemaType(SchemaType::Name name);

} // namespace opc::model
