#pragma once

#include <string>
#include <string_view>

namespace opc::inspection {

/// What is odd about a type for all parts of an extension, as a sentence; empty if nothing is.
/// @param extension  in lower case
std::string oddityOfDefault(std::string_view extension, std::string_view contentType);

} // namespace opc::inspection
