#pragma once

#include <bedrock/crypto/Export.hpp>

#include <stdexcept>
#include <string>

namespace bedrock::crypto::utils {

/// The base of the exceptions of the cryptographic services. `what()` says what failed and, in parentheses, the message of
/// OpenSSL.
class BEDROCK_CRYPTO_EXPORT Exception : public std::runtime_error {
public:
    explicit Exception(const std::string& message) : std::runtime_error(message) {}
    Exception(const Exception&) = default;
    Exception(Exception&&) = default;
    ~Exception() override;
};

/// Bytes or numbers aren't a key of the requested kind and size.
class BEDROCK_CRYPTO_EXPORT InvalidKey : public Exception {
public:
    explicit InvalidKey(const std::string& message) : Exception(message) {}
    InvalidKey(const InvalidKey&) = default;
    InvalidKey(InvalidKey&&) = default;
    ~InvalidKey() override;
};

/// An RSA key can't be used with any size: it is encrypted or limited to RSA-PSS, or its numbers are out of bounds or
/// don't belong together.
class BEDROCK_CRYPTO_EXPORT UnusableKey : public InvalidKey {
public:
    explicit UnusableKey(const std::string& message) : InvalidKey(message) {}
    UnusableKey(const UnusableKey&) = default;
    UnusableKey(UnusableKey&&) = default;
    ~UnusableKey() override;
};

/// A digest can't be computed: its algorithm isn't available, or its input can't be read.
class BEDROCK_CRYPTO_EXPORT CouldNotComputeDigest : public Exception {
public:
    explicit CouldNotComputeDigest(const std::string& message) : Exception(message) {}
    CouldNotComputeDigest(const CouldNotComputeDigest&) = default;
    CouldNotComputeDigest(CouldNotComputeDigest&&) = default;
    ~CouldNotComputeDigest() override;
};

} // namespace bedrock::crypto::utils
