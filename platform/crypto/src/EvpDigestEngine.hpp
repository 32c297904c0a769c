#pragma once

#include "OpenSsl.hpp"

#include <bedrock/crypto/DigestEngine.hpp>

#include <memory>

namespace bedrock::crypto {

/// OpenSSL's name of an algorithm, such as "SHA2-256".
const char* getOpenSslName(DigestAlgorithm algorithm);

class EvpDigestEngine final : public DigestEngine {
public:
    /// @throws utils::CouldNotComputeDigest  OpenSSL doesn't have the algorithm
    explicit EvpDigestEngine(DigestAlgorithm algorithm);

    DigestAlgorithm getAlgorithm() const override { return algorithm; }
    std::vector<unsigned char> computeDigest(const std::vector<unsigned char>& bytes) override;
    std::vector<unsigned char> computeDigest(std::istream& stream) override;
    void start() override;
    void update(const void* bytes, std::size_t count) override;
    std::vector<unsigned char> finish() override;

private:
    void updateInBlocks(std::streambuf& source);

    DigestAlgorithm algorithm;
    openssl::MdPtr digest;
    openssl::MdCtxPtr context;
    std::unique_ptr<char[]> block; // made by the first stream
};

} // namespace bedrock::crypto
