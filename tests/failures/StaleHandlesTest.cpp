#include "support/PackageTest.hpp"
#include "support/TestCertificates.hpp"

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/PKCS12Certificate.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/SignatureCoverage.hpp>
#include <opc/model/XercesGuard.hpp>

#include <openssl/pkcs12.h>

#include <array>
#include <memory>
#include <optional>

/// @file
/// Calls every public operation of every handle after each event that makes handles stale. The streams of a part
/// aren't tested: nobody may use them after the part is deleted.

namespace {

using namespace opc::model;
using bedrock::certificates::CertificateValidationOptions;
using bedrock::certificates::PKCS12Certificate;
using bedrock::certificates::TrustStore;
using bedrock::certificates::X509CertificateChain;
using bedrock::codesigning_verifier::FingerprintStore;
using opc::interfaces::OpenMode;
using opc::test::Bytes;

/// Keys and certificates, made only once.
struct Signer {
    Signer() {
        trusted.addCertificate(identity.certificate);
        const std::shared_ptr<PKCS12> structure(
            PKCS12_create("p", nullptr, identity.key.get(), identity.content.get(), nullptr, 0, 0, 0, 0, 0),
            PKCS12_free);
        Bytes der(static_cast<std::size_t>(i2d_PKCS12(structure.get(), nullptr)));
        unsigned char* end = der.data();
        i2d_PKCS12(structure.get(), &end);
        bundle = std::make_unique<PKCS12Certificate>(der, "p");
        der.resize(static_cast<std::size_t>(i2d_PUBKEY(identity.key.get(), nullptr)));
        end = der.data();
        i2d_PUBKEY(identity.key.get(), &end);
        publicKey = der;
    }

    opc::test::Identity identity = opc::test::makeIdentity({});
    bedrock::certificates::X509Certificate certificate = identity.certificate;
    Bytes privateKey = identity.getPrivateKey();
    Bytes publicKey;
    TrustStore trusted;
    std::unique_ptr<PKCS12Certificate> bundle;
    FingerprintStore fingerprints;
    X509CertificateChain chain;
    CertificateValidationOptions options;
    SignatureParams params{DigestMethod::SHA256, SignatureMethod::RSA2048};
};

const Signer& signer() {
    static const Signer made;
    return made;
}

/// An open package with handles of every kind on it. "sig1" covers /a.xml, "sig2" covers /b.xml.
class Handles {
public:
    Handles() {
        opc::test::fill(store, {u"/a.xml", u"/b.xml"});
        store.setPart(u"/_rels/a.xml.rels",
                      opc::test::relationships(R"(<Relationship Id="r" Type="t:t" Target="b.xml"/>)"));
        makePackage();
        for (const PartName& name : {a, b})
            manager->sign({name}, {}, signer().privateKey, signer().certificate, signer().chain,
                          signer().options, signer().params, signer().trusted);
        part.emplace(package->getPart(a));
        relationship.emplace(part->getRelationshipByID(u"r"));
        signature.emplace(manager->getSignature(u"sig1"));
        parts.emplace(package->getParts());
        coverage.emplace(*manager, *signature);
    }
    ~Handles() {
        physical.forgetScript();
        if (package)
            package->close(true);
        manager.reset();
    }

    void makePackage() {
        package = std::make_unique<Package>(physical);
        manager = std::make_unique<DigitalSignatureManager>(*package);
        package->open(OpenMode::ReadWrite);
    }

    const PartName a{u"/a.xml"};
    const PartName b{u"/b.xml"};
    opc::physical::MemoryPackage store;
    opc::test::ScriptedPackage physical{store};
    std::unique_ptr<Package> package;
    std::unique_ptr<DigitalSignatureManager> manager;
    std::optional<Part> part;
    std::optional<Relationship> relationship;
    std::optional<DigitalSignature> signature;
    std::optional<opc::model::Enumerator<std::vector<Part>>> parts;
    std::optional<SignatureCoverage> coverage;
};

struct Event {
    const char* name;
    void (*happen)(Handles&);
};

const std::array<Event, 6> EVENTS{{
    {"part deleted", [](Handles& h) { h.package->deletePart(h.a); }},
    {"package closed", [](Handles& h) { h.package->close(false); }},
    {"package destroyed",
     [](Handles& h) {
         h.physical.failAt("close", "stuck"); // nobody gets this failure
         h.manager.reset();
         h.package.reset();
     }},
    {"signature removed", [](Handles& h) { h.manager->removeSignature(*h.signature); }},
    {"package reopened",
     [](Handles& h) {
         h.package->close(false);
         h.package->open(OpenMode::ReadWrite);
     }},
    {"close failed",
     [](Handles& h) {
         h.physical.failAt("close", "stuck");
         EXPECT_THROW(h.package->close(false), PackageCloseFailed);
     }},
}};

const char* const DONE = "";
const char* const GONE = "opc::model::InvalidObject: Object is no longer valid";
const char* const CLOSED = "opc::model::PackageNotOpen: Package is not open";
const char* const ALREADY_OPEN = "opc::model::PackageAlreadyOpen: Package is already open";
const char* const TOO_LATE =
    "opc::model::PackageAlreadyOpen: Can't add a data manager when package is already open";
const char* const STUCK = "opc::model::PackageCloseFailed: stuck";
const char* const NO_PART = "opc::model::CouldNotGenerateSignature: No part found with the name:/a.xml";
const char* const NO_SIGNATURE =
    "opc::model::SignatureNotFound: The provided signature part name is invalid or does not exist.";
const char* const NO_COUNTERSIGNATURE =
    "opc::model::SignatureNotFound: No countersignatures found in package.";
const char* const UNREADABLE = "opc::model::InvalidSignature: Signature is invalid: 104";
const char* const NEVER = nullptr; ///< packages and managers are destroyed: there is nobody to ask

struct Operation {
    const char* name;
    void (*run)(Handles&, const Signer&);
};

struct Group {
    std::array<const char*, EVENTS.size()> outcomes; ///< event by event
    std::vector<Operation> operations;
};

#define OPERATION(...)                                                                                       \
    {                                                                                                        \
#__VA_ARGS__, [](Handles& h, const Signer& s) { (void)h; (void)s; (void)(__VA_ARGS__); }                     \
    }

const std::vector<Group>& groups() {
    static const std::vector<Group> all{
        {{DONE, DONE, DONE, DONE, DONE, DONE},
         {OPERATION(Part(*h.part)),
          OPERATION(h.part = *h.part),
          OPERATION(h.part->getName()),
          OPERATION(h.part->getContentType()),
          OPERATION(h.parts->begin()->getName()),
          OPERATION(h.relationship->getID()),
          OPERATION(h.relationship->getType()),
          OPERATION(h.relationship->getSourceURI()),
          OPERATION(h.relationship->getTarget()),
          OPERATION(h.relationship->getTargetMode()),
          OPERATION(h.relationship->getTargetURI()),
          OPERATION(h.signature->getName()),
          OPERATION(h.signature->getSignatureParams()),
          OPERATION(h.signature->getSignatureValue()),
          OPERATION(h.signature->getSignedPartNames()),
          OPERATION(h.signature->getSignedRelationships()),
          OPERATION(h.signature->getSignedTime()),
          OPERATION(h.signature->getCertificate()),
          OPERATION(h.signature->getCertificateChain()),
          OPERATION(h.coverage->covers(h.a)),
          OPERATION(h.coverage->covers(*h.relationship))}},
        {{GONE, GONE, GONE, DONE, GONE, DONE},
         {OPERATION(h.part->getInputStream()), OPERATION(h.part->getOutputStream()),
          OPERATION(h.part->getSize()), OPERATION(h.part->createInternalRelationship(u"t:t", URI(u"/b.xml"))),
          OPERATION(h.part->createExternalRelationship(u"t:t", u"http://e/")),
          OPERATION(h.part->deleteRelationship(u"r")), OPERATION(h.part->getRelationshipByID(u"r")),
          OPERATION(h.part->hasRelationship(u"r")), OPERATION(h.part->getRelationships()),
          OPERATION(h.part->getRelationships(ExcludeMode::ExcludeManaged)),
          OPERATION(h.part->getRelationshipsByType(u"t:t")),
          OPERATION((h.parts->end() - 2)->getInputStream())}},
        {{DONE, CLOSED, NEVER, DONE, DONE, DONE},
         {OPERATION(h.package->createPart(PartName(u"/c.xml"), ContentType(u"a/b"), StandardPartInfo())),
          OPERATION(h.package->deletePart(h.b)), OPERATION(h.package->getPart(h.b)),
          OPERATION(h.package->hasPart(h.a)), OPERATION(h.package->getParts()),
          OPERATION(h.package->getParts(ExcludeMode::ExcludeManaged)),
          OPERATION(h.package->createInternalRelationship(u"t:t", URI(u"/b.xml"))),
          OPERATION(h.package->createExternalRelationship(u"t:t", u"http://e/")),
          OPERATION(h.package->getRelationships()),
          OPERATION(h.package->getRelationships(ExcludeMode::ExcludeManaged)),
          OPERATION(h.package->getRelationshipsByType(u"t:t")),
          OPERATION(h.package->hasRelationship(u"rId1")), OPERATION(h.package->getRelationshipByID(u"rId1")),
          OPERATION(h.package->deleteRelationship(u"rId1")),
          OPERATION(PackageHelper::getCoreProperties(*h.package)),
          OPERATION(PackageHelper::createOrUpdateCoreProperties(*h.package, CoreProperties())),
          OPERATION(PackageHelper::deleteCoreProperties(*h.package)),
          OPERATION(PackageHelper::deleteRelationshipsAndTargets(*h.package, u"t:none"))}},
        {{GONE, GONE, NEVER, DONE, GONE, DONE},
         {OPERATION(PackageHelper::deleteRelationshipsAndTargets(*h.package, *h.part, u"t:none"))}},
        {{DONE, DONE, NEVER, DONE, DONE, DONE},
         {OPERATION(h.package->isOpen()), OPERATION(h.package->isReadOnly()),
          OPERATION(h.package->isCreateOnly()), OPERATION([&h] {
              std::u16string existing;
              h.package->isPartDerivedFromExistingPartName(h.a, existing);
          }())}},
        {{DONE, DONE, NEVER, DONE, DONE, STUCK}, {OPERATION(h.package->close(true))}},
        {{ALREADY_OPEN, DONE, NEVER, ALREADY_OPEN, ALREADY_OPEN, ALREADY_OPEN},
         {OPERATION(h.package->open(OpenMode::ReadOnly))}},
        {{TOO_LATE, DONE, NEVER, TOO_LATE, TOO_LATE, TOO_LATE},
         {OPERATION(DigitalSignatureManager(*h.package))}},
        {{DONE, CLOSED, NEVER, DONE, DONE, DONE},
         {OPERATION(h.manager->getSignatures()),
          OPERATION(h.manager->isPackageSigned()),
          OPERATION(h.manager->isSigned(h.a)),
          OPERATION(h.manager->isPackageCountersigned()),
          OPERATION(h.manager->getManagedPartNames()),
          OPERATION(h.manager->getManagedRelationshipTypes()),
          OPERATION(SignatureCoverage(*h.manager, *h.signature)),
          OPERATION(h.manager->removeCountersignature()),
          OPERATION(h.manager->removeAllSignatures()),
          OPERATION(h.manager->getSignature(u"sig2")),
          OPERATION(h.manager->sign({h.b}, {}, s.privateKey, s.publicKey, s.params)),
          OPERATION(h.manager->sign({h.b}, {}, s.privateKey, s.params)),
          OPERATION(h.manager->sign({h.b}, {}, s.privateKey, s.certificate, s.chain, s.options, s.params,
                                    s.trusted)),
          OPERATION(h.manager->sign({h.b}, {}, *s.bundle, s.options, s.params, s.trusted)),
          OPERATION(h.manager->countersignAllSignatures(s.privateKey, s.publicKey, s.params)),
          OPERATION(h.manager->countersignAllSignatures(s.privateKey, s.params)),
          OPERATION(h.manager->countersignAllSignatures(s.privateKey, s.certificate, s.chain, s.options,
                                                        s.params, s.trusted)),
          OPERATION(h.manager->countersignAllSignatures(*s.bundle, s.options, s.params, s.trusted)),
          OPERATION(h.manager->signPackage(s.privateKey, s.params)),
          OPERATION(h.manager->signPackage(*s.bundle, s.options, s.params, s.trusted))}},
        {{NO_PART, CLOSED, NEVER, DONE, DONE, DONE},
         {OPERATION(h.manager->sign({h.a}, {}, s.privateKey, s.params))}},
        {{DONE, CLOSED, NEVER, NO_SIGNATURE, DONE, DONE},
         {OPERATION(h.manager->getSignature(u"sig1")), OPERATION(h.manager->removeSignature(u"sig1")),
          OPERATION(h.manager->removeSignature(*h.signature))}},
        {{UNREADABLE, UNREADABLE, NEVER, DONE, DONE, DONE},
         {OPERATION(h.manager->verifySignature(*h.signature, s.publicKey)),
          OPERATION(h.manager->verifySignature(*h.signature, s.fingerprints, s.options, s.trusted)),
          OPERATION(h.manager->verifySignature(*h.signature, s.certificate, s.fingerprints, s.chain,
                                               s.options, s.trusted)),
          OPERATION(h.manager->verifyAllSignatures(s.fingerprints, s.options, s.trusted))}},
        {{NO_SIGNATURE, CLOSED, NEVER, NO_SIGNATURE, NO_SIGNATURE, NO_SIGNATURE},
         {OPERATION(h.manager->getCountersignature())}},
        {{NO_COUNTERSIGNATURE, CLOSED, NEVER, NO_COUNTERSIGNATURE, NO_COUNTERSIGNATURE, NO_COUNTERSIGNATURE},
         {OPERATION(h.manager->verifyCountersignature(s.publicKey)),
          OPERATION(h.manager->verifyCountersignature(s.fingerprints, s.options, s.trusted)),
          OPERATION(h.manager->verifyCountersignature(s.certificate, s.fingerprints, s.chain, s.options,
                                                      s.trusted))}},
    };
    return all;
}

TEST(StaleHandles, answerEveryOperationAsDocumented) {
    const XercesGuard guard;
    for (std::size_t i = 0; i < EVENTS.size(); ++i)
        for (const Group& group : groups())
            for (const Operation& operation : group.operations) {
                if (group.outcomes[i] == NEVER)
                    continue;
                SCOPED_TRACE(std::string(operation.name) + " after: " + EVENTS[i].name);
                Handles handles;
                EVENTS[i].happen(handles);
                EXPECT_EQ(opc::test::outcomeOf([&] { operation.run(handles, signer()); }), group.outcomes[i]);
            }
}

} // namespace
