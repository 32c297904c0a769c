#pragma once

#include <bedrock/crypto/Export.hpp>

#include <cstddef>
#include <vector>

namespace bedrock::crypto {

/// A generator of random bytes that are fit for keys. Any number of threads may use one.
class BEDROCK_CRYPTO_EXPORT CryptoPRNG {
public:
    virtual ~CryptoPRNG();

    /// @throws utils::Exception  if the system gives no randomness
    virtual std::vector<unsigned char> generate(std::size_t count) = 0;

protected:
    CryptoPRNG() = default;
    CryptoPRNG(const CryptoPRNG&) = default;
    CryptoPRNG& operator=(const CryptoPRNG&) = default;
};

} // namespace bedrock::crypto
