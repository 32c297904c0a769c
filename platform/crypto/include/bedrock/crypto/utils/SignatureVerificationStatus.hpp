#pragma once

namespace bedrock::crypto::utils {

/// What a verifier found about a signature value.
enum class SignatureVerificationStatus {
    Valid,       ///< made over these bytes with the private half of the key
    Invalid,     ///< made over other bytes, with another key or another digest, or no signature value at all
    WrongLength, ///< not as long as the key's modulus, so no signature value of this key
};

} // namespace bedrock::crypto::utils
