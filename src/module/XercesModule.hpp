#pragma once

#include "coreproperties/CorePropertiesParser.hpp"
#include "signatures/document/SignatureXml.hpp"
#include "xml/ElementReader.hpp"
#include "xml/EventParsing.hpp"
#include "xml/SchemaType.hpp"
#include "xml/XmlDocument.hpp"

#include <opc/model/XmlRules.hpp>

namespace opc::model {

/// The functions of the library that need Xerces. Everything else in the library calls Xerces through these alone, apart
/// from the public classes with its name.
///
/// A program that links the static library has them with it, and loads Xerces when it starts. `LoadedModule.cpp` defines
/// them a second time: a program or library that links it in front of the static one doesn't link Xerces. It loads a
/// module that does, when one of the functions is called first.
struct XercesModule {
    decltype(&makeElementReader) elements;
    decltype(&makeXmlDocument) document;
    decltype(&makeSchemaType) type;
    decltype(&parseCoreProperties) coreProperties;
    decltype(&makeSignatureXml) signatures;
    decltype(&parseXmlDocument) events;
    void (*rules)(InputStream& stream);
};

} // namespace opc::model
