#pragma once

#include <bedrock/crypto/Export.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace bedrock::crypto::utils {

/// Encodes bytes as Base64 by RFC 4648 section 4, padded, on one line.
BEDROCK_CRYPTO_EXPORT std::u16string base64Encode(const std::vector<unsigned char>& bytes);

/// Decodes a Base64 text. Blanks, tabs and line ends are allowed anywhere in it, because signature parts have them.
///
/// @throws Exception  the text has a character outside the alphabet, missing or misplaced padding, or bits after the last
///         byte that aren't zero (RFC 4648 section 3.5): two different texts without blanks never give the same bytes
BEDROCK_CRYPTO_EXPORT std::vector<unsigned char> base64Decode(std::u16string_view text);
BEDROCK_CRYPTO_EXPORT std::vector<unsigned char> base64Decode(std::string_view text);

} // namespace bedrock::crypto::utils
