#pragma once

#include <bedrock/crypto/Export.hpp>

#include <stdexcept>
#include <string>

namespace bedrock::crypto::utils {

/// The library that has the cryptographic services isn't installed beside this one, or OpenSSL isn't. This says nothing about
/// a key, a certificate or a signature, so it isn't one of their exceptions: nobody can take it for a failure in them.
class BEDROCK_CRYPTO_EXPORT CryptoNotLoaded : public std::runtime_error {
public:
    explicit CryptoNotLoaded(const std::string& message) : std::runtime_error(message) {}
    CryptoNotLoaded(const CryptoNotLoaded&) = default;
    CryptoNotLoaded(CryptoNotLoaded&&) = default;
    ~CryptoNotLoaded() override;
};

} // namespace bedrock::crypto::utils
