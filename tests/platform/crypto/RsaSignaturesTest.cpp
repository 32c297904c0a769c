#include "CryptoSupport.hpp"

#include <bedrock/crypto/utils/Exceptions.hpp>

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

/// The numbers of this key belong together, but 2^512 - 1, a multiple of 3, takes the place of a prime.
TEST(RsaSignatures, wrongValuesDontLeaveTheSigner) {
    const auto times = [](int count, const std::string& digits) {
        std::string text;
        for (int index = 0; index < count; ++index)
            text += digits;
        return text;
    };
    const std::vector<std::string> numbers{times(127, "F") + "C" + times(127, "0") + "3",
                                           "10001",
                                           "2AAA5555" + times(14, "AAAA5555") + "AAAA5554" +
                                               times(15, "AAAC5553") + "AAAC5555",
                                           times(128, "F"),
                                           times(127, "F") + "D",
                                           times(15, "FFFF0000") + "FFFF",
                                           times(15, "5555AAAA") + "5555AAA9",
                                           "7" + times(127, "F")};
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
