#include "signatures/RsaKeys.hpp"

namespace opc::model {

std::shared_ptr<bedrock::crypto::RSAPublicKey> createRsaPublicKey(const bedrock::crypto::CryptoEngine& engine,
                                                                  SignatureMethod method,
                                                                  const std::vector<unsigned char>& encoded) {
    switch (method) {
    case SignatureMethod::RSA1024:
        return engine.createRSA1024PublicKey(encoded);
    case SignatureMethod::RSA2048:
        return engine.createRSA2048PublicKey(encoded);
    case SignatureMethod::RSA4096:
        return engine.createRSA4096PublicKey(encoded);
    case SignatureMethod::NoKey:
        break;
    }
    return nullptr;
}

} // namespace opc::model
