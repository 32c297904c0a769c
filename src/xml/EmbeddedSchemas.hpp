#pragma once

#include <cstddef>

namespace opc::model {

/// A schema document that is compiled into the library.
struct EmbeddedSchema {
    const char* bufferName; ///< its name in messages of Xerces
    const unsigned char* text;
    std::size_t size; ///< in bytes
};

/// The schema documents, generated from src/xml/schemas. Their imports name only a namespace and no place, so they
/// resolve only to grammars that a parser has already cached: load an imported schema first.
namespace schemas {

extern const EmbeddedSchema XML;
extern const EmbeddedSchema DUBLIN_CORE;
extern const EmbeddedSchema DCMI_TYPE;
extern const EmbeddedSchema DCMI_TERMS;      ///< load it after XML, DUBLIN_CORE and DCMI_TYPE
extern const EmbeddedSchema CORE_PROPERTIES; ///< load it after XML, DUBLIN_CORE and DCMI_TERMS
extern const EmbeddedSchema CONTENT_TYPES;
extern const EmbeddedSchema RELATIONSHIPS;
extern const EmbeddedSchema PACKAGE_SIGNATURE;
extern const EmbeddedSchema XML_SIGNATURE;

} // namespace schemas

} // namespace opc::model
