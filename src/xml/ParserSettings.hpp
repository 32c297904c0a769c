#pragma once

#include <xercesc/dom/DOMConfiguration.hpp>

namespace opc::model {

/// Sets what every parser of this library has: no document type, and nothing from outside.
/// @param loadSchemas  whether schemas outside the cached grammars may be opened
void configureParser(xercesc::DOMConfiguration* configuration, bool validate, bool loadSchemas);

} // namespace opc::model
