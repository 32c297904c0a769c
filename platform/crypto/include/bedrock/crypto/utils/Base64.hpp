#pragma once

#include <bedrock/crypto/Export.hpp>

#include <string>
#include <vector>

namespace bedrock::crypto::utils {

/// The Base64 form of RFC 4648 section 4, padded, on one line.
BEDROCK_CRYPTO_EXPORT std::u16string base64Encode(const std::vector<unsigned char>& bytes);

/// The bytes of a Base64 text. Blanks, tabs and line ends may stand anywhere in it, as signature parts have
/// them.
///
/// @throws Exception  for a character outside the alphabet, for missing or misplaced padding, and for bits
/// behind
///         the last byte that aren't zero (RFC 4648 section 3.5): no two texts without blanks give the same
///         bytes
BEDROCK_CRYPTO_EXPORT std::vector<unsigned char> base64Decode(const std::u16string& text);

} // namespace bedrock::crypto::utils
