#pragma once

#include <bedrock/crypto/Export.hpp>

#include <iosfwd>
#include <vector>

namespace bedrock::crypto {

enum class DigestAlgorithm { MD5, SHA1, SHA224, SHA256, SHA384, SHA512 };

/// Computes digests with one algorithm. Each call computes a new digest.
///
/// Use an engine from one thread at a time. It doesn't depend on the `CryptoEngine` that made it.
class BEDROCK_CRYPTO_EXPORT DigestEngine {
public:
    virtual ~DigestEngine();

    virtual DigestAlgorithm getAlgorithm() const = 0;

    /// @throws utils::CouldNotComputeDigest
    virtual std::vector<unsigned char> computeDigest(const std::vector<unsigned char>& bytes) = 0;

    /// Digests the stream from its position to its end, block by block through its buffer. After that the stream has
    /// `eofbit`. Exceptions of the buffer pass unchanged.
    /// @throws utils::CouldNotComputeDigest  the digest can't be computed, or the stream has failed already
    virtual std::vector<unsigned char> computeDigest(std::istream& stream) = 0;

protected:
    DigestEngine() = default;
    DigestEngine(const DigestEngine&) = default;
    DigestEngine& operator=(const DigestEngine&) = default;
};

} // namespace bedrock::crypto
