#pragma once

#include <bedrock/crypto/Export.hpp>

#include <cstddef>
#include <vector>

namespace bedrock::crypto {

/// A generator of random bytes that are good enough for keys. Any number of threads can use it.
class BEDROCK_CRYPTO_EXPORT CryptoPRNG {
public:
    virtual ~CryptoPRNG();

    /// @throws utils::Exception  the system gives no random bytes
    virtual std::vector<unsigned char> generate(std::size_t count) = 0;

protected:
    CryptoPRNG() = default;
    CryptoPRNG(const CryptoPRNG&) = default;
    CryptoPRNG& operator=(const CryptoPRNG&) = default;
};

} // namespace bedrock::crypto
