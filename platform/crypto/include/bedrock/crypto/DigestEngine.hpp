#pragma once

#include <bedrock/crypto/Export.hpp>

#include <iosfwd>
#include <vector>

namespace bedrock::crypto {

enum class DigestAlgorithm { MD5, SHA1, SHA224, SHA256, SHA384, SHA512 };

/// Computes digests of one algorithm, one after another: each call starts anew.
///
/// An engine serves one thread at a time. It isn't tied to the `CryptoEngine` that made it.
class BEDROCK_CRYPTO_EXPORT DigestEngine {
public:
    virtual ~DigestEngine();

    virtual DigestAlgorithm getAlgorithm() const = 0;

    /// @throws utils::CouldNotComputeDigest
    virtual std::vector<unsigned char> computeDigest(const std::vector<unsigned char>& bytes) = 0;

    /// The digest of everything from the stream's position to its end, read block by block through its
    /// buffer. The stream is left with `eofbit`. What the buffer throws passes unchanged.
    /// @throws utils::CouldNotComputeDigest  also if the stream has failed already
    virtual std::vector<unsigned char> computeDigest(std::istream& stream) = 0;

protected:
    DigestEngine() = default;
    DigestEngine(const DigestEngine&) = default;
    DigestEngine& operator=(const DigestEngine&) = default;
};

} // namespace bedrock::crypto
