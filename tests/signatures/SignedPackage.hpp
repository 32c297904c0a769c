#pragma once

#include "support/PackageTest.hpp"
#include "support/TestCertificates.hpp"
#include "support/Texts.hpp"

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <bedrock/crypto/RsaKeyPair.hpp>
#include <opc/model/DigitalSignatureManager.hpp>

#include <memory>
#include <optional>

namespace opc::test {

using bedrock::certificates::CertificateValidationOptions;
using bedrock::certificates::TrustStore;
using bedrock::certificates::X509CertificateChain;
using bedrock::codesigning_verifier::FingerprintStore;

constexpr model::DigestMethod ALL_DIGESTS[] = {model::DigestMethod::MD5,    model::DigestMethod::SHA1,
                                               model::DigestMethod::SHA224, model::DigestMethod::SHA256,
                                               model::DigestMethod::SHA384, model::DigestMethod::SHA512};

inline model::RelationshipSelector byId(const char16_t* source, const char16_t* id) {
    return {model::URI(source), model::RelationshipSelectorType::SourceId, id};
}
inline model::RelationshipSelector byType(const char16_t* source, const char16_t* type) {
    return {model::URI(source), model::RelationshipSelectorType::SourceType, type};
}

/// A small package with relationships and core properties, and a manager. Signed with keys of 1024 bits, which are
/// fast.
class SignedPackage : public testing::Test {
protected:
    static constexpr char16_t SIGNATURE[] = u"/_xmlsignatures/sig1.xml";
    static constexpr char16_t ORIGIN[] = u"/_xmlsignatures/origin.sigs";
    static constexpr char16_t CORE_PROPERTIES[] = u"/metadata/coreProperties.xml";

    SignedPackage() {
        fill(store, {u"/a.xml", u"/b.xml"});
        store.setPart(u"/a.xml", toBytes("<a>content</a>"));
        store.setPart(
            CORE_PROPERTIES,
            toBytes("<coreProperties><cp:keywords>old</cp:keywords><dc:title>t</dc:title></coreProperties>"));
        store.setPart(
            u"/_rels/.rels",
            relationships(
                R"(<Relationship Id="rId1" Type="urn:main" Target="a.xml"/>)"
                R"(<Relationship Id="rId2" Type="urn:link" Target="http://e/" TargetMode="External"/>)"));
        store.setPart(u"/_rels/a.xml.rels",
                      relationships(R"(<Relationship Id="rId1" Type="urn:next" Target="b.xml"/>)"));
        open();
    }
    ~SignedPackage() override { close(true); }

    void open(interfaces::OpenMode mode = interfaces::OpenMode::ReadWrite) {
        package = std::make_unique<model::Package>(store);
        manager = std::make_unique<model::DigitalSignatureManager>(*package);
        package->open(mode);
    }
    void close(bool abandon) {
        if (package)
            package->close(abandon);
        manager.reset();
        package.reset();
    }
    void reopen(interfaces::OpenMode mode = interfaces::OpenMode::ReadWrite) {
        close(false);
        open(mode);
    }

    /// The text of a stored part; by default, of the first signature.
    std::string text(const char16_t* name = SIGNATURE) const { return toText(store.partBytes(name)); }

    /// Opens the package with this text in the part of the first signature.
    void openWith(const std::string& signature) {
        close(true);
        store.setPart(SIGNATURE, toBytes(signature));
        open();
    }

    /// Replaces the closed package by one that was never signed.
    void removeSignatureParts() {
        for (const std::u16string& name : store.partNames())
            if (name.rfind(u"/_xmlsignatures/", 0) == 0)
                store.removePart(name);
        store.setPart(u"/_rels/.rels", relationships(""));
    }

    model::Part part(const char16_t* name) { return package->getPart(model::PartName(name)); }

    model::DigitalSignature sign(const std::vector<model::PartName>& parts,
                                 const std::vector<model::RelationshipSelector>& relationships) {
        return manager->sign(parts, relationships, privateKey, publicKey, params);
    }
    model::DigitalSignature signPart(const char16_t* name) { return sign({model::PartName(name)}, {}); }
    model::DigitalSignature signAll() { return manager->signPackage(privateKey, params); }

    /// The code of verifying a signature by a public key: from the status, or from the exception.
    int verify(const model::DigitalSignature& signature, const Bytes& key) {
        try {
            return manager->verifySignature(signature, key).getErrorCode().value();
        } catch (const model::InvalidSignature& e) {
            const int code = e.getErrorCode().value();
            EXPECT_EQ(e.what(), "Signature is invalid: " + std::to_string(code));
            return code;
        }
    }
    int verify(const model::DigitalSignature& signature) { return verify(signature, publicKey); }
    int verify(const char16_t* name) { return verify(manager->getSignature(name)); }

    const Bytes& privateKey = keysOf(1024).getPrivateKey();
    const Bytes& publicKey = keysOf(1024).getPublicKey();
    const model::SignatureParams params{model::DigestMethod::SHA256, model::SignatureMethod::RSA1024};
    physical::MemoryPackage store;
    std::unique_ptr<model::Package> package;
    std::unique_ptr<model::DigitalSignatureManager> manager;
};

} // namespace opc::test
