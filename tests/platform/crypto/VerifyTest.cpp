#include "CryptoSupport.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/codesigning_verifier/Verify.hpp>

namespace {

using namespace bedrock::certificates;
using namespace bedrock::codesigning_verifier;
using namespace bedrock::test;
using bedrock::crypto::DigestAlgorithm;
using Options = CodesigningVerificationOptions;
using Time = std::chrono::system_clock::time_point;

const Bytes Message = bytesOf("<SignedInfo>signed</SignedInfo>");
const Time In2030 = std::chrono::system_clock::from_time_t(1906502400);
const Time In2040 = Time(std::chrono::seconds(2222035200));

/// A successful verification. Each case changes something in it.
struct Verification {
    Bytes message = Message;
    Bytes value;
    std::optional<Time> time = In2030;
    X509Certificate certificate;
    X509CertificateChain chain;
    TrustStore store;
    FingerprintStore fingerprints;
    Options::SignatureMethod method = Options::SignatureMethod::RSA2048;
    Options::SignatureDigestMethod digest = Options::SignatureDigestMethod::SHA256;
    Options::SignaturePaddingMode padding = Options::SignaturePaddingMode::PKCS1v15;
    CertificateValidationOptions validation;

    CodesigningVerificationStatus run() const {
        return verify(message, value, time, certificate, chain, store, fingerprints,
                      Options(method, digest, padding, validation));
    }
};

Bytes sign(const Identity& identity, DigestAlgorithm algorithm = DigestAlgorithm::SHA256) {
    bedrock::crypto::cryptopp::CryptoProvider provider;
    const std::size_t bits = identity.certificate.getKeySize();
    const auto signer =
        provider.createRSASigner(bits, privateKey(bits, identity.getPrivateKey()),
                                 provider.getDefaultRSAPaddingModeSigning(), provider.getDefaultCryptoPRNG());
    return signer->sign(Message, provider.createDigestEngine(algorithm));
}

class VerifyTest : public testing::Test {
protected:
    VerifyTest()
        : root(makeIssuer("Root")), issuer(makeIssuer("Issuer", &root)), good(signedBy(makeSigner())) {}

    Identity makeSigner(const std::function<void(CertificateRecipe&)>& change = {}) const {
        return opc::test::makeSigner(&issuer, [&change](CertificateRecipe& recipe) {
            recipe.notBefore = "20250101000000Z";
            recipe.notAfter = "20350101000000Z";
            if (change)
                change(recipe);
        });
    }

    Verification signedBy(const Identity& signer) const {
        Verification verification;
        verification.value = sign(signer);
        verification.certificate = signer.certificate;
        verification.chain.addCertificate(issuer.certificate);
        verification.store.addCertificate(root.certificate);
        return verification;
    }

    using Change = std::function<void(Verification&)>;
    int codeAfter(const Change& change) const { return codeAfter(good, change); }
    int codeAfter(Verification verification, const Change& change) const {
        change(verification);
        return codeOf(verification);
    }
    static int codeOf(const Verification& verification) {
        const auto status = verification.run();
        EXPECT_EQ(status.isProperlyCodesigned(), status.getErrorCode().value() == 0);
        // The text exists only if the chain is at fault.
        const auto& results = status.getCertificateValidationResults();
        EXPECT_EQ(results.getCertificateChainStatus() == CertificateChainStatus::Good,
                  status.getErrorCode().value() <= 2);
        EXPECT_EQ(results.getValidationErrorString().empty(), status.getErrorCode().value() <= 2);
        return status.getErrorCode().value();
    }

    Identity root, issuer;
    Verification good;
};

TEST_F(VerifyTest, codesTellTheCause) {
    EXPECT_EQ(codeOf(good), 0);
    EXPECT_EQ(codeAfter([](Verification& v) { v.message[3] ^= 1; }), 1);
    EXPECT_EQ(codeAfter([](Verification& v) { v.value[9] ^= 1; }), 1);
    EXPECT_EQ(codeAfter([](Verification& v) { v.digest = Options::SignatureDigestMethod::SHA1; }), 1);
    EXPECT_EQ(codeAfter([](Verification& v) { v.value.pop_back(); }), 2);
    EXPECT_EQ(codeAfter([](Verification& v) { v.value.clear(); }), 2);
    EXPECT_EQ(codeAfter([](Verification& v) { v.time = In2040; }), 3);
    EXPECT_EQ(codeAfter([](Verification& v) { v.time = Time(); }), 4);
    EXPECT_EQ(codeAfter([](Verification& v) { v.chain = X509CertificateChain(); }), 5);
    EXPECT_EQ(codeAfter([this](Verification& v) {
                  v.store = TrustStore();
                  v.chain.addCertificate(root.certificate);
              }),
              6);
    const Identity forTls = makeSigner([](CertificateRecipe& r) { r.extendedKeyUsage = "serverAuth"; });
    EXPECT_EQ(codeOf(signedBy(forTls)), 7);
    const Identity signer = makeSigner([](CertificateRecipe& r) { r.subject = "No issuer"; });
    const Identity below = makeSigner([&signer](CertificateRecipe& r) { r.issuer = &signer; });
    EXPECT_EQ(codeAfter(signedBy(below),
                        [&signer](Verification& v) { v.chain.addCertificate(signer.certificate); }),
              8);
    EXPECT_EQ(codeAfter(signedBy(signer),
                        [this, &signer](Verification& v) {
                            v.validation.addRevocationList(opc::test::makeRevocationList(
                                issuer, {&signer}, "20300101000000Z", "20310101000000Z"));
                        }),
              10);
    const Identity weak = makeSigner([](CertificateRecipe& r) { r.digest = EVP_sha1(); });
    EXPECT_EQ(codeOf(signedBy(weak)), 11);
    EXPECT_EQ(codeAfter(signedBy(weak), [](Verification& v) { v.validation.setAcceptingWeakDigests(true); }),
              0);
    const Identity impostor = makeIssuer("Issuer");
    const Identity forged = makeSigner([&impostor](CertificateRecipe& r) { r.issuer = &impostor; });
    EXPECT_EQ(codeOf(signedBy(forged)), 16);
    EXPECT_EQ(codeAfter([](Verification& v) { v.validation.setUsingRevocationLists(true); }), 19);
}

TEST_F(VerifyTest, theTimeIsTheOptionsThenTheSignaturesThenNow) {
    EXPECT_EQ(codeAfter([](Verification& v) { v.validation.setCheckTime(In2040); }), 3);
    EXPECT_EQ(codeAfter([](Verification& v) {
                  v.validation.setCheckTime(In2030);
                  v.time = In2040;
              }),
              0);
    const Identity past = makeSigner([](CertificateRecipe& r) {
        r.notBefore = "20000101000000Z";
        r.notAfter = "20010101000000Z";
    });
    EXPECT_EQ(codeAfter(signedBy(past), [](Verification& v) { v.time.reset(); }), 3);
}

TEST_F(VerifyTest, aKnownFingerprintExcusesTheCertificateAlone) {
    const Identity bad = makeSigner([](CertificateRecipe& r) {
        r.issuer = nullptr;
        r.notAfter = "20260101000000Z";
        r.keyUsage = "keyEncipherment";
        r.digest = EVP_md5();
    });
    const std::string fingerprint = bad.certificate.getSHA256Fingerprint();
    std::string colons;
    for (std::size_t index = 0; index < fingerprint.size(); index += 2)
        colons += (index ? ":" : "") + fingerprint.substr(index, 2);
    for (const std::string& text : {fingerprint, colons}) {
        const auto know = [&text](Verification& v) { v.fingerprints.addFingerprint(text); };
        EXPECT_EQ(codeAfter(signedBy(bad), know), 0);
        EXPECT_EQ(codeAfter(signedBy(bad),
                            [&](Verification& v) {
                                know(v);
                                v.value[0] ^= 1;
                            }),
                  1);
    }
    EXPECT_EQ(codeAfter(signedBy(bad),
                        [this](Verification& v) {
                            v.fingerprints.addFingerprint(root.certificate.getSHA256Fingerprint());
                            v.fingerprints.setSkippingVerification(true);
                            v.fingerprints.setUsingFingerprintEscapeHatch(true);
                        }),
              6);
    FingerprintStore store;
    for (const std::string& text :
         {std::string(), fingerprint + "0", fingerprint.substr(1), " " + fingerprint.substr(1)}) {
        EXPECT_THROW(store.addFingerprint(text), std::invalid_argument) << text;
        EXPECT_FALSE(store.hasFingerprint(text));
    }
}

TEST_F(VerifyTest, eachMethodIsChecked) {
    using Digest = Options::SignatureDigestMethod;
    const std::pair<Digest, DigestAlgorithm> digests[] = {
        {Digest(0), DigestAlgorithm::MD5},    {Digest(1), DigestAlgorithm::SHA1},
        {Digest(2), DigestAlgorithm::SHA224}, {Digest(3), DigestAlgorithm::SHA384},
        {Digest(4), DigestAlgorithm::SHA256}, {Digest(5), DigestAlgorithm::SHA512},
    };
    const std::size_t sizes[] = {1024, 2048, 4096};
    for (int method = 0; method < 3; ++method) {
        const Identity signer = makeSigner([&](CertificateRecipe& r) { r.rsaBits = sizes[method]; });
        for (const auto& [digest, algorithm] : digests) {
            Verification verification = signedBy(signer);
            verification.value = sign(signer, algorithm);
            verification.method = Options::SignatureMethod(method);
            verification.digest = digest;
            verification.validation.setAcceptingWeakKeys(true);
            EXPECT_EQ(codeOf(verification), 0) << sizes[method] << int(digest);
        }
    }
}

TEST_F(VerifyTest, whatCantBeCheckedIsRaised) {
    const auto raisedBy = [this](auto&& change) {
        Verification verification = good;
        change(verification);
        try {
            verification.run();
        } catch (const CodesigningException& failure) {
            EXPECT_STRNE(failure.what(), "");
            return failure.getErrorCode().value();
        }
        return 0;
    };
    EXPECT_EQ(raisedBy([](Verification& v) { v.certificate = X509Certificate(); }), 13);
    EXPECT_EQ(raisedBy([](Verification& v) { v.method = Options::SignatureMethod::RSA4096; }), 15);
    EXPECT_EQ(raisedBy([](Verification& v) { v.method = Options::SignatureMethod(3); }), 15);
    EXPECT_EQ(raisedBy([](Verification& v) { v.digest = Options::SignatureDigestMethod(6); }), 15);
    EXPECT_EQ(raisedBy([](Verification& v) { v.padding = Options::SignaturePaddingMode(0); }), 15);
    EXPECT_EQ(raisedBy([this](Verification& v) { v.certificate = issuer.certificate; }), 15);
    // Even exponents, and exponents of 72 bits.
    for (const Bytes& exponent : {Bytes{4, 0, 0, 4}, Bytes(9, 0xFF)}) {
        const Identity unusable = makeSigner(
            [&exponent](CertificateRecipe& r) { r.key = opc::test::makePublicKey(256, exponent); });
        EXPECT_EQ(raisedBy([&unusable](Verification& v) { v.certificate = unusable.certificate; }), 17);
    }
    EXPECT_EQ(raisedBy([](Verification& v) { v.chain.addCertificate(X509Certificate()); }), 19);
}

TEST_F(VerifyTest, otherSequencesOfBytesServe) {
    const Options options(good.method, good.digest, good.padding, good.validation);
    const std::string text(Message.begin(), Message.end());
    EXPECT_TRUE(verify(text, good.value, good.time, good.certificate, good.chain, good.store,
                       good.fingerprints, options)
                    .isProperlyCodesigned());
}

} // namespace
