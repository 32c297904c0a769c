#pragma once

#include <cstddef>

namespace opc::model {

/// A schema document that is compiled into the library.
struct EmbeddedSchema {
    const char* bufferName; ///< what Xerces calls it in messages
    const unsigned char* text;
    std::size_t size; ///< in bytes
};

/// The schema documents, generated from src/xml/schemas. Their imports name a namespace and no place, so that
/// they resolve only among the grammars a parser has cached: what a schema imports is loaded before it.
namespace schemas {

extern const EmbeddedSchema XML;
extern const EmbeddedSchema DUBLIN_CORE;
extern const EmbeddedSchema DCMI_TYPE;
extern const EmbeddedSchema DCMI_TERMS;      ///< behind XML, DUBLIN_CORE and DCMI_TYPE
extern const EmbeddedSchema CORE_PROPERTIES; ///< behind XML, DUBLIN_CORE and DCMI_TERMS
extern const EmbeddedSchema CONTENT_TYPES;
extern const EmbeddedSchema RELATIONSHIPS;
extern const EmbeddedSchema PACKAGE_SIGNATURE;
extern const EmbeddedSchema XML_SIGNATURE;

} // namespace schemas

} // namespace opc::model
