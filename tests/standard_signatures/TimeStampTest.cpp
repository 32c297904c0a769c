#include "canonical/CanonicalXml.hpp"
#include "standard_signatures/SignedSample.hpp"
#include "support/EventComparison.hpp"
#include "support/OpenSslCommand.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Text.hpp>

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace opc;
using namespace opc::test;
using namespace opc::standard_signatures;

using TimeFrom = TrustAnswer::TimeFrom;

/// A service that makes time stamps.
class TimeStampService {
public:
    TimeStampService() {
        command.run(
            "req -x509 -newkey rsa:2048 -nodes -keyout tsa.key -out tsa.pem -days 36500 -subj /CN=Stamps "
            "-addext extendedKeyUsage=critical,timeStamping -addext keyUsage=critical,digitalSignature");
        command.write("tsa.cnf",
                      toBytes("[tsa]\ndefault_policy = 1.2.3.4.1\ndigests = sha256\nserial = serial\n"
                              "signer_digest = sha256\ness_cert_id_alg = sha256\n"));
    }

    std::vector<unsigned char> stamp(const std::string& content) const {
        command.write("content", toBytes(content));
        command.run("ts -query -data content -sha256 -cert -out query");
        command.run("ts -reply -queryfile query -config tsa.cnf -section tsa -signer tsa.pem -inkey tsa.key "
                    "-token_out -out token");
        return command.read("token");
    }

    std::filesystem::path certificate() const { return command.path("tsa.pem"); }

private:
    OpenSslCommand command;
};

/// The canonical form of the element SignatureValue.
std::string signatureValueOf(const std::string& document) {
    const Bytes bytes = toBytes(document);
    SlowStream stream(bytes, 4096);
    const XmlTree tree = XmlTree::read(stream);
    return canonicalize(*nextElement(*firstChildElement(tree.root())));
}

/// Puts a time stamp into a signature that is complete.
SignatureRecipe::Change stampedBy(const TimeStampService& service, const std::string& more = {}) {
    return [&service, more](std::string& document) {
        const auto token = service.stamp(signatureValueOf(document) + more);
        replacing("</xd:QualifyingProperties>",
                  "<xd:UnsignedProperties><xd:UnsignedSignatureProperties><xd:SignatureTimeStamp>"
                  "<xd:EncapsulatedTimeStamp>" +
                      base64(token) +
                      "</xd:EncapsulatedTimeStamp></xd:SignatureTimeStamp></xd:UnsignedSignatureProperties>"
                      "</xd:UnsignedProperties></xd:QualifyingProperties>")(document);
    };
}

/// The same in the way of Visual Studio extensions: over the octets of the value, in an object of its own.
SignatureRecipe::Change stampedInAnObjectBy(const TimeStampService& service, const std::string& more = {}) {
    return [&service, more](std::string& document) {
        const std::string begin = "<SignatureValue>";
        const std::size_t start = document.find(begin) + begin.size();
        const Bytes value = bedrock::crypto::utils::base64Decode(
            toString(document.substr(start, document.find('<', start) - start), true));
        const auto token = service.stamp(std::string(value.begin(), value.end()) + more);
        replacing(
            "</Signature>",
            "<Object><TimeStamp xmlns='http://schemas.openxmlformats.org/package/2006/digital-signature'>"
            "<Comment/><EncodedTime>" +
                base64(token) + "</EncodedTime></TimeStamp></Object></Signature>")(document);
    };
}

TEST(StandardTrust, RestsOnATimeStampAndNotOnTheClaimedTime) {
    const TimeStampService service;
    const Identity signer =
        makeSigner(nullptr, [](CertificateRecipe& recipe) { recipe.notAfter = "20360101000000Z"; });
    VerificationPolicy policy;
    policy.trust.emplace().roots.addCertificate(signer.certificate);
    policy.trust->validation.setCheckTime(
        std::chrono::system_clock::time_point(std::chrono::seconds(2114380800))); // in 2037
    SignatureRecipe recipe;
    recipe.signer = &signer;
    const auto verify = [&] {
        SignedSample sample;
        sample.sign(recipe);
        return sample.verify(policy).signatures.at(0);
    };

    VerifiedSignature found = verify();
    EXPECT_EQ(found.trust.status,
              TrustAnswer::Status::NotTrusted); // the certificate has expired, whatever the signer claims
    EXPECT_EQ(found.trust.timeFrom, TimeFrom::Caller);

    recipe.changeAtLast = stampedBy(service);
    found = verify();
    EXPECT_EQ(found.trust.status, TrustAnswer::Status::NotTrusted);
    EXPECT_NE(found.trust.timeStampFailure.find("self-signed certificate"), std::string::npos)
        << found.trust.timeStampFailure;

    policy.trust->roots.addFile(service.certificate());
    for (const auto& stamped : {stampedBy, stampedInAnObjectBy}) {
        recipe.changeAtLast = stamped(service, "");
        found = verify();
        EXPECT_TRUE(found.isYes) << found.trust.reason << found.trust.timeStampFailure;
        EXPECT_EQ(found.trust.timeFrom, TimeFrom::TimeStamp);

        recipe.changeAtLast = stamped(service, "x"); // about something else
        found = verify();
        EXPECT_EQ(found.trust.status, TrustAnswer::Status::NotTrusted);
        EXPECT_NE(found.trust.timeStampFailure.find("message imprint mismatch"), std::string::npos)
            << found.trust.timeStampFailure;
    }
}

/// Some programs put issuers where XAdES has them, which isn't signed.
TEST(StandardTrust, FindsIssuersAmongUnsignedProperties) {
    const Identity root = makeIssuer("Root");
    const Identity issuer = makeIssuer("Issuer", &root);
    const Identity signer = makeSigner(&issuer);
    for (const bool hasIssuer : {false, true}) {
        SignatureRecipe recipe;
        recipe.signer = &signer;
        const auto encoded = [](const std::string& octets) {
            return "<xd:EncapsulatedX509Certificate>" + octets + "</xd:EncapsulatedX509Certificate>";
        };
        recipe.changeAtLast =
            replacing("</xd:QualifyingProperties>",
                      "<xd:UnsignedProperties><xd:UnsignedSignatureProperties><xd:CertificateValues>" +
                          encoded("AAAA") +
                          (hasIssuer ? encoded(base64(issuer.certificate.getAsByteArray())) : std::string()) +
                          "</xd:CertificateValues></xd:UnsignedSignatureProperties></xd:UnsignedProperties>"
                          "</xd:QualifyingProperties>");
        SignedSample sample;
        sample.sign(recipe);
        EXPECT_EQ(sample.verify(SignedSample::trusting(root)).isYes(), hasIssuer);
    }
}

TEST(StandardTrust, TakesWhomTheCallerKnows) {
    SignedSample sample;
    sample.sign();
    const auto& certificate = SignedSample::usualSigner().certificate;
    VerificationPolicy policy;
    TrustPolicy& trust = policy.trust.emplace();
    EXPECT_FALSE(sample.verify(policy).isYes());
    trust.fingerprints = {certificate.getSHA256Fingerprint()};
    EXPECT_EQ(sample.verify(policy).signatures.at(0).trust.evidence, TrustAnswer::Evidence::Fingerprint);
    EXPECT_TRUE(sample.verify(policy).isYes());
    trust.publicKeys = {certificate.getPublicKey()};
    EXPECT_EQ(sample.verify(policy).signatures.at(0).trust.evidence, TrustAnswer::Evidence::PublicKey);
    trust = {};
    trust.publicKeys = {makeSigner(nullptr, [](CertificateRecipe& recipe) {
                            recipe.rsaBits = 3072;
                        }).certificate.getPublicKey()};
    EXPECT_FALSE(sample.verify(policy).isYes());
}

/// Revoked, expired, and not there for signing.
TEST(StandardTrust, ChecksTheCertificate) {
    const Identity root = makeIssuer("Root");
    const Identity good = makeSigner(&root);
    const struct {
        Identity signer;
        std::string reason;
    } cases[] = {
        {good, ""},
        {makeSigner(&root, [](CertificateRecipe& recipe) { recipe.notAfter = "20200101000000Z"; }),
         "certificate has expired: CN=Signer"},
        {makeSigner(&root, [](CertificateRecipe& recipe) { recipe.keyUsage = "keyEncipherment"; }),
         "the certificate isn't there for signing: CN=Signer"},
        {makeSigner(&root, [](CertificateRecipe& recipe) { recipe.digest = EVP_sha1(); }),
         "the digest of the certificate's signature is too weak: CN=Signer"},
        {makeSigner(nullptr), "self-signed certificate: CN=Signer"},
    };
    for (const auto& [signer, reason] : cases) {
        SignatureRecipe recipe;
        recipe.signer = &signer;
        SignedSample sample;
        sample.sign(recipe);
        VerificationPolicy policy;
        policy.trust.emplace().roots.addCertificate(root.certificate);
        EXPECT_EQ(sample.verify(policy).signatures.at(0).trust.reason, reason);
        EXPECT_EQ(sample.verify(policy).isYes(), reason.empty());
    }
    SignatureRecipe recipe;
    recipe.signer = &good;
    SignedSample sample;
    sample.sign(recipe);
    VerificationPolicy policy;
    policy.trust.emplace().roots.addCertificate(root.certificate);
    policy.trust->validation.addRevocationList(
        makeRevocationList(root, {&good}, "20200101000000Z", "99990101000000Z"));
    EXPECT_EQ(sample.verify(policy).signatures.at(0).trust.reason, "certificate revoked: CN=Signer");
}

} // namespace
