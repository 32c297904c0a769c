#pragma once

namespace bedrock::crypto::utils {

/// The result of checking a signature value.
enum class SignatureVerificationStatus {
    Valid,       ///< made over these bytes with the private half of the key
    Invalid,     ///< made over other bytes, with another key or another digest, or not a signature value
    WrongLength, ///< doesn't have the length of the key's modulus, so it can't be a signature value of this key
};

} // namespace bedrock::crypto::utils
