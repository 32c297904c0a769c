#pragma once

#include <xercesc/dom/DOMConfiguration.hpp>

namespace opc::model {

/// Sets what every parser of this library has: no document type, and nothing from outside.
/// @param loadSchemas  whether a schema may be opened that isn't among the cached grammars
void configureParser(xercesc::DOMConfiguration* configuration, bool validate, bool loadSchemas);

} // namespace opc::model
