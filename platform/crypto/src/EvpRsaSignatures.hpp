#pragma once

#include "OpenSsl.hpp"

#include <bedrock/crypto/RSASigner.hpp>
#include <bedrock/crypto/RSAVerifier.hpp>

#include <memory>

namespace bedrock::crypto {

class EvpRsaSigner final : public RSASigner {
public:
    explicit EvpRsaSigner(std::shared_ptr<EVP_PKEY> key) : key(std::move(key)) {}

    std::vector<unsigned char> sign(const std::vector<unsigned char>& bytes,
                                    const std::shared_ptr<DigestEngine>& engine) override;

private:
    std::shared_ptr<EVP_PKEY> key;
};

class EvpRsaVerifier final : public RSAVerifier {
public:
    explicit EvpRsaVerifier(std::shared_ptr<EVP_PKEY> key) : key(std::move(key)) {}

    utils::SignatureVerificationStatus verify(const std::vector<unsigned char>& bytes,
                                              const std::vector<unsigned char>& signatureValue,
                                              const std::shared_ptr<DigestEngine>& engine) override;

private:
    std::shared_ptr<EVP_PKEY> key;
};

} // namespace bedrock::crypto
