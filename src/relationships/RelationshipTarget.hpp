#pragma once

#include <string>

namespace opc::model {

/// Replaces backslashes in `target` by slashes: real files name external targets by Windows paths.
std::u16string withSlashes(const std::u16string& target);

/// Whether `target`, with slashes, is an IRI. An external target must be one.
bool isIRITarget(const std::u16string& target);

} // namespace opc::model
