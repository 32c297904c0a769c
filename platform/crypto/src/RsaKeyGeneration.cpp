#include "RsaKeyCodec.hpp"

#include <bedrock/crypto/RsaKeyPair.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

#include <openssl/rsa.h>

namespace bedrock::crypto {

RsaKeyPair generateRsaKeyPair(std::size_t bits) {
    if (bits != 1024 && bits != 2048 && bits != 4096)
        throw utils::InvalidKey("RSA keys have 1024, 2048 or 4096 bits.");
    const openssl::ErrorScope scope;
    const openssl::PkeyPtr key(EVP_RSA_gen(bits));
    if (!key)
        openssl::fail<utils::Exception>("An RSA key can't be made.");
    return RsaKeyPair(encodePrivateKey(*key), encodePublicKey(*key));
}

} // namespace bedrock::crypto
