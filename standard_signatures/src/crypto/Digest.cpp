#include "crypto/Digest.hpp"

#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <opc/core/InputStreamSource.hpp>

#include <boost/iostreams/stream.hpp>

namespace opc::standard_signatures {

namespace {

std::shared_ptr<bedrock::crypto::DigestEngine> engineOf(const DigestMethod& method) {
    return bedrock::crypto::cryptopp::CryptoProvider().createDigestEngine(method.algorithm);
}

} // namespace

std::vector<unsigned char> digestOf(InputStream& stream, const DigestMethod& method) {
    constexpr std::streamsize BLOCK = 65536;
    boost::iostreams::stream<InputStreamSource> source(InputStreamSource(stream), BLOCK);
    return engineOf(method)->computeDigest(source);
}

std::vector<unsigned char> digestOf(const std::string& octets, const DigestMethod& method) {
    return engineOf(method)->computeDigest(std::vector<unsigned char>(octets.begin(), octets.end()));
}

} // namespace opc::standard_signatures
