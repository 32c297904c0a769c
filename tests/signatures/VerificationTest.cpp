#include "SignedPackage.hpp"
#include "signatures/algorithms/CryptoErrors.hpp"
#include "signatures/signature/DataToSign.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "support/Cases.hpp"
#include "support/OpenSslCommand.hpp"

#include <bedrock/certificates/PKCS12Certificate.hpp>
#include <opc/core/Time.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;
using bedrock::certificates::PKCS12Certificate;
using bedrock::certificates::X509Certificate;

class Verification : public SignedPackage {};

TEST_F(Verification, whatIsLoadedStaysAsItWasWhileThePackageIsOpen) {
    const DigitalSignature signature = signAll();
    package->createExternalRelationship(u"urn:link", u"http://f/");
    EXPECT_EQ(verify(signature), 0);
    writeAll(part(u"/a.xml"), "written after signing");
    EXPECT_EQ(verify(signature), 101) << "but content is read as it is now";
    package->deletePart(PartName(u"/b.xml"));
    EXPECT_EQ(verify(signature), 104);
    package->close(true);
    EXPECT_RAISES(InvalidSignature, "Signature is invalid: 104",
                  manager->verifySignature(signature, publicKey));
}

TEST_F(Verification, onlyTheFirstPlainKeywordsOfTheCorePropertiesAreLeftOut) {
    close(true);
    const auto check = [this](const std::u16string& name, const std::string& signedContent,
                              const std::string& now, const std::string& code) {
        store.setPart(name, toBytes(signedContent));
        open();
        const auto signature = signPart(name.c_str()).getName();
        close(false);
        store.setPart(name, toBytes(now));
        open();
        EXPECT_EQ(std::to_string(verify(signature.c_str())), code);
        manager->removeAllSignatures();
        close(false);
    };
    forEachCase("signatures/keywords.txt", check);
}

/// A signature without a key holds by a key of any of the three sizes. The length of the bytes tells the size.
TEST_F(Verification, materialThatDoesNotFitIsRefusedWithItsCode) {
    const DigitalSignature made = signAll();
    EXPECT_EQ(verify(made, Bytes()), 103);
    EXPECT_EQ(verify(made, keysOf(2048).getPublicKey()), 103) << "it is known with which key it was made";
    reopen();
    const DigitalSignature signature = manager->getSignature(u"sig1");
    EXPECT_EQ(verify(signature), 0);
    const std::pair<std::size_t, int> lengths[] = {{1, 103},  {127, 103}, {128, 17},  {255, 17},
                                                   {256, 17}, {383, 17},  {384, 103}, {511, 103},
                                                   {512, 17}, {639, 17},  {640, 103}, {1024, 103}};
    for (const auto& [length, code] : lengths)
        EXPECT_EQ(verify(signature, Bytes(length, 7)), code) << length;
    EXPECT_THROW(manager->verifySignature(signature, X509Certificate(), FingerprintStore(),
                                          X509CertificateChain(), CertificateValidationOptions(),
                                          TrustStore()),
                 InvalidSignature);

    const auto other = bedrock::crypto::generateRsaKeyPair(1024);
    const auto status = manager->verifySignature(signature, other.getPublicKey());
    EXPECT_FALSE(status.isProperlyCodesigned());
    EXPECT_TRUE(status.isErrorFromSignature());
    EXPECT_FALSE(status.isErrorFromCertificateChain());
}

TEST(VerificationFailures, ofTheServicesHaveACodeByTheirClass) {
    using namespace bedrock::crypto::utils;
    const std::pair<void (*)(), int> cases[] = {
        {[] { throw InvalidKey("text"); }, 17},
        {[] { throw CouldNotComputeDigest("text"); }, 18},
        {[] { throw Exception("text"); }, 12},
    };
    for (const auto& [fail, code] : cases) {
        try {
            translateVerificationFailures(fail);
            ADD_FAILURE() << code;
        } catch (const InvalidSignature& e) {
            EXPECT_EQ(e.getErrorCode().value(), code);
            EXPECT_STREQ(e.what(), "text");
        }
    }
}

TEST_F(Verification, aSignatureWithoutCertificateHoldsByItsOwnKeyOnlyIfThatIsAsked) {
    FingerprintStore fingerprints;
    const CertificateValidationOptions options;
    EXPECT_TRUE(manager->verifyAllSignatures(fingerprints, options, TrustStore()).isProperlyCodesigned())
        << "there is none";
    const DigitalSignature bare = signAll();
    const DigitalSignature keyed = signPart(u"/a.xml");
    EXPECT_EQ(manager->verifyAllSignatures(fingerprints, options, TrustStore()).getErrorCode().value(), 9);
    fingerprints.setSkippingVerification(true);
    EXPECT_RAISES(InvalidSignature, "Signature is invalid: 103",
                  manager->verifySignature(bare, fingerprints, options, TrustStore()));
    EXPECT_TRUE(manager->verifySignature(keyed, fingerprints, options, TrustStore()).isProperlyCodesigned());
}

class CertificateSignatures : public Verification {
protected:
    CertificateSignatures() : root(makeIssuer("Root")), signer(makeSigner(&root)) {
        trusted.addCertificate(root.certificate);
        other.addCertificate(makeIssuer("Other").certificate);
    }

    DigitalSignature signWithCertificate(const SignatureParams& with = SignatureParams()) {
        return manager->sign({PartName(u"/a.xml")}, {}, signer.getPrivateKey(), signer.certificate, chain,
                             options, with, trusted);
    }

    using Verification::verify;
    int verify(const DigitalSignature& signature, const TrustStore& trust,
               const FingerprintStore& known = FingerprintStore()) {
        return manager->verifySignature(signature, known, options, trust).getErrorCode().value();
    }

    Identity root;
    Identity signer;
    X509CertificateChain chain;
    CertificateValidationOptions options;
    TrustStore trusted;
    TrustStore other;
    FingerprintStore none;
};

constexpr int UNKNOWN_ISSUER = 5;

TEST_F(CertificateSignatures, holdByTheirTrustStoreOrFingerprint) {
    signWithCertificate();
    reopen();
    EXPECT_TRUE(manager->verifyAllSignatures(none, options, trusted).isProperlyCodesigned());
    const DigitalSignature signature = manager->getSignature(u"sig1");
    EXPECT_EQ(signature.getCertificate().getSHA256Fingerprint(), signer.certificate.getSHA256Fingerprint());
    EXPECT_EQ(verify(signature, other), UNKNOWN_ISSUER);
    FingerprintStore known;
    known.addFingerprint(signer.certificate.getSHA256Fingerprint());
    EXPECT_EQ(verify(signature, other, known), 0);
    EXPECT_TRUE(manager->verifySignature(signature, signer.certificate, none, chain, options, trusted)
                    .isProperlyCodesigned());
    writeAll(part(u"/a.xml"), "changed");
    EXPECT_EQ(verify(signature, other), 101) << "a changed part outranks an untrusted chain";
}

TEST_F(CertificateSignatures, holdWithEveryDigest) {
    for (const DigestMethod digest : ALL_DIGESTS)
        EXPECT_EQ(verify(signWithCertificate(SignatureParams(digest, SignatureMethod::RSA2048)), trusted), 0);
}

TEST_F(CertificateSignatures, canBeCountersignaturesAndComeFromBundles) {
    const OpenSslCommand openssl;
    openssl.write("key.der", signer.getPrivateKey());
    openssl.write("certificate.der", signer.certificate.getAsByteArray());
    openssl.run("pkey -inform DER -in key.der -out key");
    openssl.run("x509 -inform DER -in certificate.der -out certificate");
    const auto bundle = [&](const std::string& content) {
        openssl.run("pkcs12 -export -passout pass:word -out bundle " + content);
        return PKCS12Certificate(openssl.read("bundle"), "word");
    };
    signWithCertificate();
    const auto countersign = [&](const std::string& content,
                                 const SignatureParams& with = SignatureParams()) {
        manager->countersignAllSignatures(bundle(content), options, with, trusted);
    };
    const std::pair<const char*, const char*> halves[] = {
        {"-nokeys -in certificate", "No private key found."},
        {"-nocerts -inkey key", "No certificate found."}};
    for (const auto& half : halves)
        EXPECT_RAISES(CouldNotGenerateSignature,
                      std::string("The given PKCS12 bundle is invalid. ") + half.second,
                      countersign(half.first));
    EXPECT_THROW(countersign("-inkey key -in certificate",
                             SignatureParams(DigestMethod::SHA512, SignatureMethod::RSA4096)),
                 CouldNotGenerateSignature);
    EXPECT_FALSE(manager->isPackageCountersigned());

    countersign("-inkey key -in certificate");
    reopen();
    EXPECT_TRUE(manager->verifyCountersignature(none, options, trusted).isProperlyCodesigned());
    EXPECT_TRUE(manager->verifyCountersignature(none, options, other).isErrorFromCertificateChain());
    EXPECT_TRUE(manager->verifyCountersignature(signer.certificate, none, chain, options, trusted)
                    .isProperlyCodesigned());
    EXPECT_TRUE(manager->verifyCountersignature(signer.certificate, none, chain, options, other)
                    .isErrorFromCertificateChain());
}

TEST_F(CertificateSignatures, aTimeBeyondTheClockIsTheEndOfIt) {
    signer = makeSigner(&root, [](CertificateRecipe& r) { r.notAfter = "20370101000000Z"; });
    const DataToSign content{{PartName(u"/a.xml")}, {{1}}, {ContentType(u"text/xml")}, {}};
    DigitalSignatureData signature(u"1", signer.getPrivateKey(), signer.certificate, chain, SignatureParams(),
                                   content);
    const std::pair<const char16_t*, int> times[] = {
        {u"2020", 0}, {u"2263", 3}, {u"9999-12-31T23:59:59Z", 3}, {u"1677", 4}, {u"1500", 4}};
    for (const auto& [time, code] : times) {
        signature.m_signedTime = opc::convertStringToTime(time);
        EXPECT_EQ(signature.verifyWithFingerprints(none, trusted, options).getErrorCode().value(), code)
            << opc::toUDEString(time);
    }
}

TEST_F(CertificateSignatures, areRefusedWithBadMaterial) {
    Bytes key = signer.getPrivateKey();
    const auto fails = [&](const std::string& message, const X509Certificate& certificate,
                           const SignatureParams& with, const TrustStore& trust) {
        try {
            manager->sign({PartName(u"/a.xml")}, {}, key, certificate, chain, options, with, trust);
            ADD_FAILURE() << message;
        } catch (const CouldNotGenerateSignature& e) {
            EXPECT_EQ(std::string(e.what()).rfind(message, 0), 0U) << e.what();
        }
    };
    fails("The verification certificate is empty.", X509Certificate(), SignatureParams(), trusted);
    fails("Verification certificate corresponds to key size 2048 but signature params specify a key size of "
          "4096 \n",
          signer.certificate, SignatureParams(DigestMethod::SHA512, SignatureMethod::RSA4096), trusted);
    fails("The verification certificate is invalid.", signer.certificate, SignatureParams(), other);
    const Identity forPss = makeSigner(&root, [](CertificateRecipe& r) { r.key = opc::test::makePssKey(); });
    fails(
        "The verification certificate is invalid.the certificate's key is for RSA-PSS, which isn't supported",
        forPss.certificate, SignatureParams(), trusted);
    key[key.size() / 2] ^= 1;
    fails("The key's numbers don't belong together.", signer.certificate, SignatureParams(), trusted);
    EXPECT_FALSE(manager->isPackageSigned());
    EXPECT_FALSE(package->hasPart(PartName(ORIGIN)));
    key = bedrock::crypto::generateRsaKeyPair(2048).getPrivateKey();
    fails("The signature doesn't verify correctly with the given certificate.", signer.certificate,
          SignatureParams(), trusted);
    EXPECT_TRUE(manager->isPackageSigned()) << "found out once it is there, and it stays";
}

using bedrock::codesigning_verifier::ErrorCode;
using bedrock::codesigning_verifier::ErrorMap;

TEST(VerificationStatus, saysOfEachCodeWhetherItIsOfTheSignatureOrTheChain) {
    const std::pair<ErrorCode, char> cases[] = {
        {ErrorMap<-1>(), ' '},  {ErrorMap<0>(), ' '},   {ErrorMap<1>(), 'S'},   {ErrorMap<2>(), 'S'},
        {ErrorMap<3>(), 'C'},   {ErrorMap<4>(), 'C'},   {ErrorMap<5>(), 'C'},   {ErrorMap<6>(), 'C'},
        {ErrorMap<7>(), 'C'},   {ErrorMap<8>(), 'C'},   {ErrorMap<9>(), 'C'},   {ErrorMap<10>(), 'C'},
        {ErrorMap<11>(), 'C'},  {ErrorMap<12>(), 'S'},  {ErrorMap<13>(), 'C'},  {ErrorMap<14>(), ' '},
        {ErrorMap<15>(), 'S'},  {ErrorMap<16>(), 'C'},  {ErrorMap<17>(), 'S'},  {ErrorMap<18>(), 'S'},
        {ErrorMap<19>(), 'C'},  {ErrorMap<20>(), ' '},  {ErrorMap<100>(), ' '}, {ErrorMap<101>(), 'S'},
        {ErrorMap<102>(), ' '}, {ErrorMap<103>(), ' '}, {ErrorMap<104>(), ' '},
    };
    for (const auto& [code, of] : cases) {
        const DigitalSignatureVerificationStatus status(
            bedrock::codesigning_verifier::CodesigningVerificationStatus(
                code, bedrock::certificates::CertificateValidationResults(
                          bedrock::certificates::CertificateChainStatus::Good, "")));
        EXPECT_EQ(status.isErrorFromSignature(), of == 'S') << code.value();
        EXPECT_EQ(status.isErrorFromCertificateChain(), of == 'C') << code.value();
        EXPECT_EQ(status.isProperlyCodesigned(), code.value() == 0) << code.value();
    }
}

} // namespace
