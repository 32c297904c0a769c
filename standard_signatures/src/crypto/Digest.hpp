#pragma once

#include "crypto/Methods.hpp"

#include <opc/core/InputStream.hpp>

#include <bedrock/crypto/DigestEngine.hpp>

#include <map>
#include <memory>
#include <string_view>
#include <vector>

namespace opc::standard_signatures {

/// Computes digests. What they need is made once.
class Digester {
public:
    /// @param stream  open, at its first byte
    /// @throws the exceptions of the stream
    std::vector<unsigned char> of(InputStream& stream, const DigestMethod& method);

    std::vector<unsigned char> of(std::string_view octets, const DigestMethod& method);

private:
    bedrock::crypto::DigestEngine& engineOf(const DigestMethod& method);

    std::map<const DigestMethod*, std::shared_ptr<bedrock::crypto::DigestEngine>> engines;
    std::unique_ptr<unsigned char[]> block; ///< of a stream
};

/// A single digest.
std::vector<unsigned char> digestOf(std::string_view octets, const DigestMethod& method);

} // namespace opc::standard_signatures
