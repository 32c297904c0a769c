#pragma once

#include "OpenSsl.hpp"

#include <bedrock/crypto/RSAPrivateKey.hpp>
#include <bedrock/crypto/RSAPublicKey.hpp>

#include <memory>

namespace bedrock::crypto {

/// Shares OpenSSL's key with the signers made from it. OpenSSL overwrites the numbers of a private key when it frees
/// the key.
class EvpRsaPrivateKey final : public RSAPrivateKey {
public:
    explicit EvpRsaPrivateKey(openssl::PkeyPtr key) : key(std::move(key)) {}

    std::size_t getKeySize() const override;
    std::vector<unsigned char> getAsByteArray() const override;
    const std::shared_ptr<EVP_PKEY>& get() const noexcept { return key; }

private:
    std::shared_ptr<EVP_PKEY> key;
};

/// Shares OpenSSL's key with the verifiers made from it.
class EvpRsaPublicKey final : public RSAPublicKey {
public:
    explicit EvpRsaPublicKey(openssl::PkeyPtr key) : key(std::move(key)) {}

    std::size_t getKeySize() const override;
    std::vector<unsigned char> getModulus() const override;
    std::vector<unsigned char> getPublicExponent() const override;
    std::vector<unsigned char> getAsByteArray() const override;
    const std::shared_ptr<EVP_PKEY>& get() const noexcept { return key; }

private:
    std::vector<unsigned char> getNumber(const char* name) const;

    std::shared_ptr<EVP_PKEY> key;
};

} // namespace bedrock::crypto
