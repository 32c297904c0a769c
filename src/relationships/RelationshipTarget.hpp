#pragma once

#include <string>

namespace opc::model {

/// `target` with its backslashes turned into slashes: real files name external targets by Windows paths.
std::u16string withSlashes(const std::u16string& target);

/// Whether `target`, with slashes, is an IRI: what an external target must be.
bool isIRITarget(const std::u16string& target);

} // namespace opc::model
