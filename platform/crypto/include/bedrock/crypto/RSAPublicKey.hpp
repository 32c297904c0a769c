#pragma once

#include <bedrock/crypto/Export.hpp>

#include <cstddef>
#include <vector>

namespace bedrock::crypto {

/// An RSA public key. It never changes, so any number of threads can use it.
class BEDROCK_CRYPTO_EXPORT RSAPublicKey {
public:
    virtual ~RSAPublicKey();

    /// The size of the modulus in bits, counted in whole bytes.
    virtual std::size_t getKeySize() const = 0;

    /// Big-endian, without leading zeros.
    virtual std::vector<unsigned char> getModulus() const = 0;

    /// Big-endian, without leading zeros.
    virtual std::vector<unsigned char> getPublicExponent() const = 0;

    /// The encoded form, a SubjectPublicKeyInfo in DER: between N / 8 and N / 8 + 127 bytes for a key of N
    /// bits.
    virtual std::vector<unsigned char> getAsByteArray() const = 0;

protected:
    RSAPublicKey() = default;
    RSAPublicKey(const RSAPublicKey&) = default;
    RSAPublicKey& operator=(const RSAPublicKey&) = default;
};

} // namespace bedrock::crypto
