#pragma once

#include "support/PackageContent.hpp"
#include "support/TestCertificates.hpp"
#include "support/Throws.hpp"

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <bedrock/crypto/RsaKeyPair.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace opc::test {

/// A pair of keys of that size, made once in a program.
inline const bedrock::crypto::RsaKeyPair& keysOf(std::size_t bits) {
    static std::map<std::size_t, bedrock::crypto::RsaKeyPair> made;
    const auto found = made.find(bits);
    return found != made.end() ? found->second
                               : made.emplace(bits, bedrock::crypto::generateRsaKeyPair(bits)).first->second;
}

/// A small package with relationships and core properties, and a manager on it. Signed with keys of 1024
/// bits, which are quick.
class SignedPackage : public testing::Test {
protected:
    using Params = model::SignatureParams;

    SignedPackage() {
        fill(store, {u"/a.xml", u"/b.xml"});
        store.setPart(u"/a.xml", toBytes("<a>content</a>"));
        store.setPart(
            u"/metadata/coreProperties.xml",
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

    model::Part part(const char16_t* name) { return package->getPart(model::PartName(name)); }

    model::DigitalSignature signPart(const char16_t* name) {
        return manager->sign({model::PartName(name)}, {}, privateKey, publicKey, params);
    }
    model::DigitalSignature signAll() { return manager->signPackage(privateKey, params); }

    /// The code of verifying a signature by the public key: of the status, or of what is raised.
    int verify(const model::DigitalSignature& signature) {
        try {
            return manager->verifySignature(signature, publicKey).getErrorCode().value();
        } catch (const model::InvalidSignature& e) {
            return e.getErrorCode().value();
        }
    }
    int verify(const char16_t* name) { return verify(manager->getSignature(name)); }

    const Bytes& privateKey = keysOf(1024).getPrivateKey();
    const Bytes& publicKey = keysOf(1024).getPublicKey();
    const Params params{model::DigestMethod::SHA256, model::SignatureMethod::RSA1024};
    physical::MemoryPackage store;
    std::unique_ptr<model::Package> package;
    std::unique_ptr<model::DigitalSignatureManager> manager;
};

} // namespace opc::test
