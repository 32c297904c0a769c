#pragma once

#include "document/SignatureDocument.hpp"

namespace opc::standard_signatures {

/// Reads keys and certificates. Whatever leads elsewhere is left alone: nothing is ever fetched.
/// @throws Refusal  with `NoKey`, `Malformed` or `BeyondLimit`
StatedKeys readKeyInfo(const XmlTreeNode& keyInfo);

} // namespace opc::standard_signatures
