#include "digests/Sha256.hpp"

#include "content/ContentBuffer.hpp"

#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>

#include <istream>
#include <vector>

namespace opc::inspection {

namespace {

std::string toHex(const std::vector<unsigned char>& bytes) {
    static constexpr char DIGITS[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) {
        text += DIGITS[byte >> 4U];
        text += DIGITS[byte & 0xFU];
    }
    return text;
}

} // namespace

Sha256::Sha256()
    : engine(bedrock::crypto::cryptopp::CryptoProvider().createDigestEngine(
          bedrock::crypto::DigestAlgorithm::SHA256)) {
}
Sha256::~Sha256() = default;

std::string Sha256::of(std::string_view bytes) {
    return toHex(engine->computeDigest({bytes.begin(), bytes.end()}));
}

std::string Sha256::of(InputStream& content) {
    ContentBuffer buffer(content);
    std::istream stream(&buffer);
    return toHex(engine->computeDigest(stream));
}

} // namespace opc::inspection
