#pragma once

#include <xercesc/util/XercesDefs.hpp>

XERCES_CPP_NAMESPACE_BEGIN
class DOMElement;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

/// Checks a core properties document, which is valid by the schema, against the rules [M4.2] to [M4.5].
/// @param root  its document element
/// @throws InvalidPartContent
void throwIfCorePropertiesBreakRules(const xercesc::DOMElement* root);

} // namespace opc::model
