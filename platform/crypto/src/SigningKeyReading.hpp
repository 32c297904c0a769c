#pragma once

#include "OpenSsl.hpp"

#include <bedrock/crypto/SigningKey.hpp>

namespace bedrock::crypto {

/// Encodes a key that can sign.
/// @throws utils::InvalidKey  it is neither RSA nor EC on a known curve, its numbers don't belong together, or it has no
///                            private half
SigningKey encodeSigningKey(EVP_PKEY& key);

} // namespace bedrock::crypto
