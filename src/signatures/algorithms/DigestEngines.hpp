#pragma once

#include <opc/model/SignatureParams.hpp>

#include <memory>
#include <vector>

namespace bedrock::crypto {
class CryptoEngine;
class DigestEngine;
} // namespace bedrock::crypto

namespace opc {
class InputStream;
}

namespace opc::model {

/// The engine that computes digests of a method; null for an unknown value.
/// @throws bedrock::crypto::utils::CouldNotComputeDigest
std::shared_ptr<bedrock::crypto::DigestEngine>
createDigestEngine(const bedrock::crypto::CryptoEngine& cryptoEngine, DigestMethod method);

/// The digest of the rest of the stream. The content is never kept in memory as a whole.
/// @throws bedrock::crypto::utils::CouldNotComputeDigest  also if `engine` is null
std::vector<unsigned char> digestStream(bedrock::crypto::DigestEngine* engine, InputStream& stream);

/// @throws bedrock::crypto::utils::CouldNotComputeDigest  also if `engine` is null
std::vector<unsigned char> digestBytes(bedrock::crypto::DigestEngine* engine,
                                       const std::vector<unsigned char>& bytes);

} // namespace opc::model
