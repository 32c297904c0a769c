#pragma once

#include <cstddef>
#include <string>

namespace opc::model {

/// How many elements were ignored, and why.
std::string describeElements(std::size_t count);

/// Why a document with ignored elements can't be written again. Elements are found by their names without a prefix,
/// so elements with a prefix are ignored, and so is an unusual root.
std::string describeUnread(std::size_t count);

} // namespace opc::model
