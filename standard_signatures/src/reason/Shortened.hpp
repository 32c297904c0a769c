#pragma once

#include <string>
#include <string_view>

namespace opc::standard_signatures {

/// The beginning of a text in UTF-8, however long it is.
/// @param most  bytes
std::string shortened(std::string_view text, std::size_t most);

} // namespace opc::standard_signatures
