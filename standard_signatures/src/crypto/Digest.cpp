#include "crypto/Digest.hpp"

#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>

namespace opc::standard_signatures {

bedrock::crypto::DigestEngine& Digester::engineOf(const DigestMethod& method) {
    auto& engine = engines[&method];
    if (!engine)
        engine = bedrock::crypto::cryptopp::CryptoProvider().createDigestEngine(method.algorithm);
    return *engine;
}

std::vector<unsigned char> Digester::of(InputStream& stream, const DigestMethod& method) {
    constexpr std::size_t BLOCK = 65536; // bytes
    if (!block)
        block.reset(new unsigned char[BLOCK]); // not make_unique, which would clear it
    bedrock::crypto::DigestEngine& engine = engineOf(method);
    engine.start();
    while (!stream.isDone())
        engine.update(block.get(), static_cast<std::size_t>(stream.read(block.get(), BLOCK)));
    return engine.finish();
}

std::vector<unsigned char> Digester::of(std::string_view octets, const DigestMethod& method) {
    bedrock::crypto::DigestEngine& engine = engineOf(method);
    engine.start();
    engine.update(octets.data(), octets.size());
    return engine.finish();
}

std::vector<unsigned char> digestOf(std::string_view octets, const DigestMethod& method) {
    return Digester().of(octets, method);
}

} // namespace opc::standard_signatures
