#pragma once

#include "crypto/Methods.hpp"

#include <opc/core/InputStream.hpp>

#include <string>
#include <vector>

namespace opc::standard_signatures {

/// @param stream  open, at its first byte
/// @throws the exceptions of the stream
std::vector<unsigned char> digestOf(InputStream& stream, const DigestMethod& method);

std::vector<unsigned char> digestOf(const std::string& octets, const DigestMethod& method);

} // namespace opc::standard_signatures
