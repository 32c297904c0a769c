#pragma once

#include "document/SignatureDocument.hpp"

namespace opc::standard_signatures {

/// Reads the signed properties (ETSI EN 319 132-1) among the elements that are signed, and the time stamps beside them.
/// @throws Refusal
void readXadesProperties(SignatureDocument& document);

} // namespace opc::standard_signatures
