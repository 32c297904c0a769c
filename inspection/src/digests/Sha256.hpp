#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace bedrock::crypto {
class DigestEngine;
}

namespace opc {
class InputStream;
}

namespace opc::inspection {

/// Computes SHA-256 digests, in hexadecimal.
class Sha256 {
public:
    Sha256();
    ~Sha256();

    std::string of(std::string_view bytes);

    /// @param content  open, at its first byte
    /// @throws the exceptions of the content
    std::string of(InputStream& content);

private:
    const std::shared_ptr<bedrock::crypto::DigestEngine> engine;
};

} // namespace opc::inspection
