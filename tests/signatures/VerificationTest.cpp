#include "SignedPackage.hpp"
#include "signatures/CryptoErrors.hpp"
#include "signatures/DataToSign.hpp"
#include "signatures/DigitalSignatureData.hpp"
#include "support/OpenSslCommand.hpp"

#include <bedrock/certificates/PKCS12Certificate.hpp>
#include <bedrock/certificates/X509Certificate.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;
using bedrock::certificates::CertificateValidationOptions;
using bedrock::certificates::PKCS12Certificate;
using bedrock::certificates::TrustStore;
using bedrock::certificates::X509Certificate;
using bedrock::certificates::X509CertificateChain;
using bedrock::codesigning_verifier::FingerprintStore;
using opc::interfaces::OpenMode;

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
    EXPECT_TRUE(throws<InvalidSignature>("Signature is invalid: 104",
                                         [&] { manager->verifySignature(signature, publicKey); }));
}

/// What is left out of the core properties is searched as bytes: the first opening and the first closing tag.
TEST_F(Verification, onlyTheFirstPlainKeywordsOfTheCorePropertiesAreLeftOut) {
    const char16_t* const CORE = u"/metadata/coreProperties.xml";
    const std::tuple<const char16_t*, const char*, const char*, int> cases[] = {
        {CORE, "<p><cp:keywords>k</cp:keywords></p>", "<p><cp:keywords>l</cp:keywords></p>", 0},
        {CORE, "<p><cp:keywords>k</cp:keywords></p>", "<p></p>", 0},
        {CORE, "<p><cp:keywords>k</cp:keywords></p>", "<q><cp:keywords>k</cp:keywords></q>", 101},
        {CORE, "<cp:keywords>k</cp:keywords><cp:keywords>k</cp:keywords>",
         "<cp:keywords>k</cp:keywords><cp:keywords>l</cp:keywords>", 101},
        {CORE, R"(<cp:keywords xml:lang="en">k</cp:keywords>)",
         R"(<cp:keywords xml:lang="en">l</cp:keywords>)", 101},
        {CORE, "<cp:keywords/>", "", 101},
        {CORE, "<cp:keywords>k", "<cp:keywords>l", 101},
        {u"/a.xml", "<cp:keywords>k</cp:keywords>", "<cp:keywords>l</cp:keywords>", 101},
    };
    close(true);
    for (const auto& [part, signedContent, now, code] : cases) {
        SCOPED_TRACE(signedContent);
        store.setPart(part, toBytes(signedContent));
        open();
        const auto name = signPart(part).getName();
        close(false);
        store.setPart(part, toBytes(now));
        open();
        EXPECT_EQ(verify(name.c_str()), code);
        manager->removeAllSignatures();
        close(false);
    }
}

TEST_F(Verification, materialThatDoesNotFitIsRefusedWithItsCode) {
    const DigitalSignature signature = signAll();
    const auto code = [&](const Bytes& key) {
        try {
            manager->verifySignature(signature, key);
            return 0;
        } catch (const InvalidSignature& e) {
            EXPECT_EQ(e.what(), "Signature is invalid: " + std::to_string(e.getErrorCode().value()));
            return e.getErrorCode().value();
        }
    };
    EXPECT_EQ(code(Bytes()), 103);
    EXPECT_EQ(code(Bytes(10)), 103);
    EXPECT_EQ(code(keysOf(2048).getPublicKey()), 103);
    EXPECT_EQ(code(Bytes(publicKey.size(), 7)), 17);
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
    EXPECT_TRUE(throws<InvalidSignature>("Signature is invalid: 103", [&] {
        manager->verifySignature(bare, fingerprints, options, TrustStore());
    }));
    EXPECT_TRUE(manager->verifySignature(keyed, fingerprints, options, TrustStore()).isProperlyCodesigned());
}

class CertificateSignatures : public Verification {
protected:
    CertificateSignatures() : root(makeIssuer("Root")) {
        CertificateRecipe recipe;
        recipe.issuer = &root;
        signer = makeIdentity(recipe);
        trusted.addCertificate(root.certificate);
        other.addCertificate(makeIssuer("Other").certificate);
    }

    DigitalSignature signWithCertificate() {
        return manager->sign({PartName(u"/a.xml")}, {}, signer->getPrivateKey(), signer->certificate, chain,
                             options, SignatureParams(), trusted);
    }

    Identity root;
    std::optional<Identity> signer;
    X509CertificateChain chain;
    CertificateValidationOptions options;
    TrustStore trusted;
    TrustStore other;
    FingerprintStore none;
};

TEST_F(CertificateSignatures, holdByTheirTrustStoreOrFingerprint) {
    signWithCertificate();
    reopen();
    EXPECT_TRUE(manager->verifyAllSignatures(none, options, trusted).isProperlyCodesigned());
    const DigitalSignature signature = manager->getSignature(u"sig1");
    EXPECT_EQ(signature.getCertificate().getSHA256Fingerprint(), signer->certificate.getSHA256Fingerprint());
    const auto untrusted = manager->verifySignature(signature, none, options, other);
    EXPECT_TRUE(untrusted.isErrorFromCertificateChain()) << untrusted.getErrorCode().value();
    FingerprintStore known;
    known.addFingerprint(signer->certificate.getSHA256Fingerprint());
    EXPECT_TRUE(manager->verifySignature(signature, known, options, other).isProperlyCodesigned());
    EXPECT_TRUE(manager->verifySignature(signature, signer->certificate, none, chain, options, trusted)
                    .isProperlyCodesigned());
}

TEST_F(CertificateSignatures, holdWithEveryDigest) {
    for (const DigestMethod digest : {DigestMethod::MD5, DigestMethod::SHA1, DigestMethod::SHA224,
                                      DigestMethod::SHA256, DigestMethod::SHA384, DigestMethod::SHA512}) {
        const DigitalSignature signature =
            manager->sign({PartName(u"/a.xml")}, {}, signer->getPrivateKey(), signer->certificate, chain,
                          options, SignatureParams(digest, SignatureMethod::RSA2048), trusted);
        EXPECT_TRUE(manager->verifySignature(signature, none, options, trusted).isProperlyCodesigned());
    }
}

TEST_F(CertificateSignatures, canBeCountersignaturesAndComeFromBundles) {
    const OpenSslCommand openssl;
    openssl.write("key.der", signer->getPrivateKey());
    openssl.write("certificate.der", signer->certificate.getAsByteArray());
    openssl.run("pkey -inform DER -in key.der -out key");
    openssl.run("x509 -inform DER -in certificate.der -out certificate");
    const auto bundle = [&](const std::string& content) {
        openssl.run("pkcs12 -export -passout pass:word -out bundle " + content);
        return PKCS12Certificate(openssl.read("bundle"), "word");
    };
    signWithCertificate();
    const auto countersign = [&](const std::string& content, const SignatureParams& with) {
        manager->countersignAllSignatures(bundle(content), options, with, trusted);
    };
    EXPECT_TRUE(
        throws<CouldNotGenerateSignature>("The given PKCS12 bundle is invalid. No private key found.", [&] {
            countersign("-nokeys -in certificate", SignatureParams());
        }));
    EXPECT_TRUE(
        throws<CouldNotGenerateSignature>("The given PKCS12 bundle is invalid. No certificate found.",
                                          [&] { countersign("-nocerts -inkey key", SignatureParams()); }));
    EXPECT_THROW(countersign("-inkey key -in certificate",
                             SignatureParams(DigestMethod::SHA512, SignatureMethod::RSA4096)),
                 CouldNotGenerateSignature);
    EXPECT_FALSE(manager->isPackageCountersigned());

    countersign("-inkey key -in certificate", SignatureParams());
    reopen();
    EXPECT_TRUE(manager->verifyCountersignature(none, options, trusted).isProperlyCodesigned());
    EXPECT_TRUE(manager->verifyCountersignature(none, options, other).isErrorFromCertificateChain());
    EXPECT_TRUE(manager->verifyCountersignature(signer->certificate, none, chain, options, trusted)
                    .isProperlyCodesigned());
    EXPECT_TRUE(manager->verifyCountersignature(signer->certificate, none, chain, options, other)
                    .isErrorFromCertificateChain());
}

TEST_F(CertificateSignatures, aTimeBeyondTheClockIsItsLastOne) {
    DataToSign toSign;
    toSign.partNames = {PartName(u"/a.xml")};
    toSign.digests = {Bytes(64)};
    toSign.contentTypes = {ContentType(u"a/b")};
    DigitalSignatureData data(u"1", signer->getPrivateKey(), signer->certificate, chain, SignatureParams(),
                              toSign);
    data.m_signedTime = boost::posix_time::ptime(boost::gregorian::date(9999, 12, 31));
    EXPECT_EQ(
        data.verifyWithCertificate(signer->certificate, none, chain, trusted, options).getErrorCode().value(),
        0);
}

TEST_F(CertificateSignatures, aChangedPartOutranksAnUntrustedChain) {
    const DigitalSignature signature = signWithCertificate();
    writeAll(part(u"/a.xml"), "changed");
    reopen();
    EXPECT_EQ(
        manager->verifySignature(manager->getSignature(u"sig1"), none, options, other).getErrorCode().value(),
        101);
}

TEST_F(CertificateSignatures, areRefusedWithBadMaterial) {
    Bytes key = signer->getPrivateKey();
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
          signer->certificate, SignatureParams(DigestMethod::SHA512, SignatureMethod::RSA4096), trusted);
    fails("The verification certificate is invalid.", signer->certificate, SignatureParams(), other);
    EXPECT_FALSE(manager->isPackageSigned());
    key = bedrock::crypto::generateRsaKeyPair(2048).getPrivateKey();
    fails("The signature doesn't verify correctly with the given certificate.", signer->certificate,
          SignatureParams(), trusted);
    EXPECT_TRUE(manager->isPackageSigned()) << "found out once it is there, and it stays";
}

} // namespace
