#pragma once

#include <bedrock/crypto/Export.hpp>

#include <cstddef>
#include <iosfwd>
#include <vector>

namespace bedrock::crypto {

enum class DigestAlgorithm { MD5, SHA1, SHA224, SHA256, SHA384, SHA512 };

/// Computes digests with one algorithm, each in one call, or of pieces as they come.
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

    /// Begins a digest of pieces. One that was begun before is given up, as it is by `computeDigest`.
    /// @throws utils::CouldNotComputeDigest
    virtual void start() = 0;

    /// Adds a piece to the digest that was begun with `start`.
    /// @throws utils::CouldNotComputeDigest  among others, because none was begun
    virtual void update(const void* bytes, std::size_t count) = 0;

    /// Ends the digest that was begun with `start`.
    /// @throws utils::CouldNotComputeDigest  among others, because none was begun
    virtual std::vector<unsigned char> finish() = 0;

protected:
    DigestEngine() = default;
    DigestEngine(const DigestEngine&) = default;
    DigestEngine& operator=(const DigestEngine&) = default;
};

} // namespace bedrock::crypto
