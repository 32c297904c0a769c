#pragma once

#include <bedrock/crypto/Export.hpp>

#include <cstddef>
#include <vector>

namespace bedrock::crypto {

/// An RSA private key. It never changes, so any number of threads can use it. Its secret numbers are overwritten when it is
/// destroyed.
class BEDROCK_CRYPTO_EXPORT RSAPrivateKey {
public:
    virtual ~RSAPrivateKey();

    /// The size of the modulus in bits, counted in whole bytes.
    virtual std::size_t getKeySize() const = 0;

    /// The encoded form, a PKCS#8 structure in DER: between N / 2 and N bytes for a key of N bits. The caller owns this copy
    /// of the secret: overwrite it after use.
    virtual std::vector<unsigned char> getAsByteArray() const = 0;

protected:
    RSAPrivateKey() = default;
    RSAPrivateKey(const RSAPrivateKey&) = default;
    RSAPrivateKey& operator=(const RSAPrivateKey&) = default;
};

} // namespace bedrock::crypto
