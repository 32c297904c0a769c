#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace opc::editing {

/// Base64 by RFC 4648, with padding and without line breaks.
std::string toBase64(std::string_view bytes);

/// @return nothing if the text isn't Base64
std::optional<std::string> fromBase64(std::string_view text);

} // namespace opc::editing
