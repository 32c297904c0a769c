#include "CryptoSupport.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>
#include <support/OpenSslCommand.hpp>

#include <openssl/bn.h>

namespace {

using namespace bedrock::test;
using bedrock::crypto::DigestAlgorithm;
using bedrock::crypto::RSASigner;
using bedrock::crypto::RSAVerifier;
using bedrock::crypto::cryptopp::CryptoProvider;
using bedrock::crypto::utils::SignatureVerificationStatus;

std::shared_ptr<RSASigner> makeSigner(std::size_t bits, const Bytes& encoded) {
    CryptoProvider provider;
    return provider.createRSASigner(bits, privateKey(bits, encoded),
                                    provider.getDefaultRSAPaddingModeSigning(),
                                    provider.getDefaultCryptoPRNG());
}

std::shared_ptr<RSAVerifier> makeVerifier(std::size_t bits, const Bytes& encoded) {
    CryptoProvider provider;
    return provider.createRSAVerifier(bits, publicKey(bits, encoded),
                                      provider.getDefaultRSAPaddingModeSigning(),
                                      provider.getDefaultCryptoPRNG());
}

const Bytes Message = bytesOf("<SignedInfo>signed</SignedInfo>");

TEST(RsaSignatures, commandLineMakesAndChecksTheSameValues) {
    const opc::test::OpenSslCommand openssl;
    openssl.write("message", Message);
    const std::pair<DigestAlgorithm, const char*> digests[] = {
        {DigestAlgorithm::MD5, "md5"},       {DigestAlgorithm::SHA1, "sha1"},
        {DigestAlgorithm::SHA224, "sha224"}, {DigestAlgorithm::SHA256, "sha256"},
        {DigestAlgorithm::SHA384, "sha384"}, {DigestAlgorithm::SHA512, "sha512"},
    };
    for (const std::size_t bits : {1024u, 2048u, 4096u}) {
        openssl.write("private", keysOf(bits).getPrivateKey());
        openssl.write("public", keysOf(bits).getPublicKey());
        const auto signer = makeSigner(bits, keysOf(bits).getPrivateKey());
        const auto verifier = makeVerifier(bits, keysOf(bits).getPublicKey());
        for (const auto& [algorithm, name] : digests) {
            const auto engine = CryptoProvider().createDigestEngine(algorithm);
            openssl.write("ours", signer->sign(Message, engine));
            const std::string command = std::string("dgst -keyform DER -") + name;
            EXPECT_EQ(openssl.run(command + " -verify public -signature ours message"), "Verified OK\n")
                << name;

            openssl.run(command + " -sign private -out theirs message");
            EXPECT_EQ(verifier->verify(Message, openssl.read("theirs"), engine),
                      SignatureVerificationStatus::Valid)
                << bits << name;
            EXPECT_EQ(openssl.read("ours"), openssl.read("theirs")) << "this padding knows one value alone";
        }
    }
}

TEST(RsaSignatures, whatDoesntHoldIsAStatus) {
    const auto sha256 = CryptoProvider().createDigestEngine(DigestAlgorithm::SHA256);
    const auto sha1 = CryptoProvider().createDigestEngine(DigestAlgorithm::SHA1);
    const Bytes value = makeSigner(1024, keysOf(1024).getPrivateKey())->sign(Message, sha256);
    const auto verifier = makeVerifier(1024, keysOf(1024).getPublicKey());
    const auto verify = [&](const Bytes& bytes, const Bytes& signature) {
        const auto status = verifier->verify(bytes, signature, sha256);
        EXPECT_EQ(ERR_peek_error(), 0u);
        return status;
    };
    EXPECT_EQ(verify(Message, value), SignatureVerificationStatus::Valid);
    EXPECT_EQ(verify(bytesOf("<SignedInfo>forged</SignedInfo>"), value),
              SignatureVerificationStatus::Invalid);
    EXPECT_EQ(verify(Bytes(), value), SignatureVerificationStatus::Invalid);
    for (std::size_t position = 0; position < value.size(); ++position) {
        Bytes changed = value;
        changed[position] ^= 1;
        EXPECT_EQ(verify(Message, changed), SignatureVerificationStatus::Invalid) << position;
    }
    for (const Bytes& fixed : {Bytes(128, 0), Bytes(128, 0xFF)})
        EXPECT_EQ(verify(Message, fixed), SignatureVerificationStatus::Invalid);
    for (const std::size_t size : {0u, 1u, 127u, 129u, 1u << 20})
        EXPECT_EQ(verify(Message, Bytes(size, 1)), SignatureVerificationStatus::WrongLength) << size;
    EXPECT_EQ(verifier->verify(Message, value, sha1), SignatureVerificationStatus::Invalid);

    const auto another = bedrock::crypto::generateRsaKeyPair(1024);
    EXPECT_EQ(makeVerifier(1024, another.getPublicKey())->verify(Message, value, sha256),
              SignatureVerificationStatus::Invalid);
}

/// The numbers of this key belong together, but no prime stands at the place of the first.
TEST(RsaSignatures, wrongValuesDontLeaveTheSigner) {
    const std::shared_ptr<BN_CTX> context(BN_CTX_new(), BN_CTX_free);
    const auto number = [](const std::string& digits) {
        BIGNUM* made = nullptr;
        BN_hex2bn(&made, digits.c_str());
        return std::shared_ptr<BIGNUM>(made, BN_free);
    };
    const std::string threefold(128, 'F');
    const auto p = number(threefold), q = number(threefold.substr(1) + "D"), e = number("10001");
    const auto n = number("0"), pLess = number("0"), qLess = number("0"), d = number("0");
    BN_mul(n.get(), p.get(), q.get(), context.get());
    BN_sub(pLess.get(), p.get(), BN_value_one());
    BN_sub(qLess.get(), q.get(), BN_value_one());
    BN_mul(d.get(), pLess.get(), qLess.get(), context.get());
    const std::shared_ptr<BIGNUM> exponent(BN_mod_inverse(nullptr, e.get(), d.get(), context.get()), BN_free);
    const auto modulo = [&](const auto& base) {
        const auto rest = number("0");
        BN_div(nullptr, rest.get(), exponent.get(), base.get(), context.get());
        return rest;
    };
    const std::shared_ptr<BIGNUM> coefficient(BN_mod_inverse(nullptr, q.get(), p.get(), context.get()),
                                              BN_free);
    std::vector<std::string> numbers;
    for (const auto& each : {n, e, exponent, p, q, modulo(pLess), modulo(qLess), coefficient}) {
        const std::shared_ptr<char> digits(BN_bn2hex(each.get()), [](char* text) { OPENSSL_free(text); });
        numbers.emplace_back(digits.get());
    }
    const auto signer = makeSigner(1024, encode(opc::test::OpenSslCommand(), numbers));
    const auto sha256 = CryptoProvider().createDigestEngine(DigestAlgorithm::SHA256);
    EXPECT_TRUE(fails<bedrock::crypto::utils::Exception>([&] { signer->sign(Message, sha256); }));
}

TEST(RsaSignatures, noEngineIsNoDigest) {
    using bedrock::crypto::utils::CouldNotComputeDigest;
    EXPECT_TRUE(fails<CouldNotComputeDigest>(
        [] { makeSigner(1024, keysOf(1024).getPrivateKey())->sign(Message, nullptr); }));
    EXPECT_TRUE(fails<CouldNotComputeDigest>(
        [] { makeVerifier(1024, keysOf(1024).getPublicKey())->verify(Message, Bytes(128), nullptr); }));
}

TEST(RsaSignatures, theSmallestPublicExponentServes) {
    const opc::test::OpenSslCommand openssl;
    openssl.run(
        "genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:2048 -pkeyopt rsa_keygen_pubexp:3 -outform DER "
        "-out private");
    openssl.run("pkey -inform DER -in private -pubout -outform DER -out public");
    const auto sha512 = CryptoProvider().createDigestEngine(DigestAlgorithm::SHA512);
    const Bytes value = makeSigner(2048, openssl.read("private"))->sign(Message, sha512);
    EXPECT_EQ(makeVerifier(2048, openssl.read("public"))->verify(Message, value, sha512),
              SignatureVerificationStatus::Valid);
}

} // namespace
