#include "EvpRsaSignatures.hpp"

#include "EvpDigestEngine.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>

#include <openssl/rsa.h>

namespace bedrock::crypto {

namespace {

using Bytes = std::vector<unsigned char>;

DigestEngine& require(const std::shared_ptr<DigestEngine>& engine) {
    if (!engine)
        throw utils::CouldNotComputeDigest("There is no digest engine.");
    return *engine;
}

/// A context that `start` has initialised, with PKCS#1 v1.5 padding and the digest of `algorithm`.
openssl::PkeyCtxPtr prepare(EVP_PKEY& key, int (*start)(EVP_PKEY_CTX*), DigestAlgorithm algorithm) {
    openssl::PkeyCtxPtr context =
        openssl::made(openssl::PkeyCtxPtr(EVP_PKEY_CTX_new_from_pkey(nullptr, &key, nullptr)));
    const openssl::MdPtr digest(EVP_MD_fetch(nullptr, getOpenSslName(algorithm), nullptr));
    if (!digest || start(context.get()) != 1 ||
        EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) != 1 ||
        EVP_PKEY_CTX_set_signature_md(context.get(), digest.get()) != 1)
        openssl::fail<utils::Exception>("RSA with this digest can't be used.");
    return context;
}

bool holds(EVP_PKEY& key, const Bytes& value, const Bytes& digest, DigestAlgorithm algorithm) {
    const openssl::PkeyCtxPtr context = prepare(key, EVP_PKEY_verify_init, algorithm);
    return EVP_PKEY_verify(context.get(), value.data(), value.size(), digest.data(), digest.size()) == 1;
}

} // namespace

// A wrong value, from a damaged key or a hardware fault, is dangerous: it can reveal the primes.
Bytes EvpRsaSigner::sign(const Bytes& bytes, const std::shared_ptr<DigestEngine>& engine) {
    const Bytes digest = require(engine).computeDigest(bytes);
    const openssl::ErrorScope scope;
    const openssl::PkeyCtxPtr context = prepare(*key, EVP_PKEY_sign_init, engine->getAlgorithm());
    Bytes value(static_cast<std::size_t>(EVP_PKEY_get_size(key.get())));
    std::size_t size = value.size();
    if (EVP_PKEY_sign(context.get(), value.data(), &size, digest.data(), digest.size()) != 1)
        openssl::fail<utils::Exception>("The key can't sign.");
    value.resize(size);
    if (!holds(*key, value, digest, engine->getAlgorithm()))
        openssl::fail<utils::Exception>("What the key signs doesn't hold by its public half.");
    return value;
}

utils::SignatureVerificationStatus EvpRsaVerifier::verify(const Bytes& bytes, const Bytes& signatureValue,
                                                          const std::shared_ptr<DigestEngine>& engine) {
    const Bytes digest = require(engine).computeDigest(bytes);
    const openssl::ErrorScope scope;
    if (signatureValue.size() != static_cast<std::size_t>(EVP_PKEY_get_size(key.get())))
        return utils::SignatureVerificationStatus::WrongLength;
    return holds(*key, signatureValue, digest, engine->getAlgorithm())
               ? utils::SignatureVerificationStatus::Valid
               : utils::SignatureVerificationStatus::Invalid;
}

} // namespace bedrock::crypto
