#include "CryptoSupport.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>

namespace {

using namespace bedrock::certificates;
using namespace bedrock::test;
using opc::test::CertificateRecipe;
using opc::test::Identity;
using opc::test::makeIssuer;
using opc::test::makePublicKey;
using opc::test::makeRevocationList;
using opc::test::makeSigner;
using Status = CertificateChainStatus;

// 2030-06-01 00:00 UTC
const auto CheckTime = std::chrono::system_clock::from_time_t(1906502400);

CertificateValidationOptions optionsAtCheckTime() {
    CertificateValidationOptions options;
    options.setCheckTime(CheckTime);
    return options;
}

TrustStore storeOf(const std::vector<const Identity*>& identities) {
    TrustStore store;
    for (const Identity* identity : identities)
        store.addCertificate(identity->certificate);
    return store;
}

X509CertificateChain chainOf(const std::vector<const Identity*>& identities) {
    X509CertificateChain chain;
    for (const Identity* identity : identities)
        chain.addCertificate(identity->certificate);
    return chain;
}

/// A root, an issuer below it, another root, and signers that the issuer certified.
struct Authorities {
    Identity root = makeIssuer("Root");
    Identity issuer = makeIssuer("Issuer", &root);
    Identity otherRoot = makeIssuer("Other root");

    Identity signer(const std::function<void(CertificateRecipe&)>& change = {}) const {
        return makeSigner(&issuer, change);
    }
};

Status validate(const Identity& identity, const std::vector<const Identity*>& chain,
                const std::vector<const Identity*>& trusted, const CertificateValidationOptions& options) {
    const auto results = identity.certificate.validateCertificate(chainOf(chain), options, storeOf(trusted));
    EXPECT_EQ(results.getValidationErrorString().empty(),
              results.getCertificateChainStatus() == Status::Good);
    EXPECT_EQ(ERR_peek_error(), 0u);
    return results.getCertificateChainStatus();
}

TEST(Validation, theChainDecides) {
    const Authorities a;
    const Identity good = a.signer();
    const Identity alone = makeSigner(nullptr);
    const Identity belowSigner = makeSigner(&good, [](CertificateRecipe& r) { r.subject = "Below signer"; });
    const Identity last = makeSigner(&a.root, [](CertificateRecipe& r) {
        r.subject = "No further";
        r.basicConstraints = "critical,CA:TRUE,pathlen:0";
        r.rsaBits = 0;
    });
    const Identity tooDeep = makeIssuer("Too deep", &last);
    const Identity belowTooDeep = makeSigner(&tooDeep);
    // A certificate in the issuer's name, made with another key.
    const Identity impostor = makeIssuer("Issuer", &a.otherRoot);
    const Identity forged = makeSigner(&impostor);
    struct Case {
        const char* name;
        const Identity& signer;
        std::vector<const Identity*> chain, trusted;
        Status status;
    };
    const Case cases[] = {
        {"complete", good, {&a.issuer}, {&a.root}, Status::Good},
        {"complete, in disorder", good, {&a.root, &a.otherRoot, &a.issuer}, {&a.root}, Status::Good},
        {"the issuer is trusted", good, {}, {&a.issuer}, Status::Good},
        {"the signer is trusted", good, {}, {&good}, Status::Good},
        {"nothing is trusted", good, {&a.issuer}, {}, Status::UnknownIssuer},
        {"another root is trusted", good, {&a.issuer}, {&a.otherRoot}, Status::UnknownIssuer},
        {"the issuer is missing", good, {}, {&a.root}, Status::UnknownIssuer},
        {"the root is in the chain", good, {&a.issuer, &a.root}, {&a.otherRoot}, Status::SelfSigned},
        {"self-signed and unknown", alone, {}, {&a.root}, Status::SelfSigned},
        {"self-signed in its own chain", alone, {&alone}, {&a.root}, Status::SelfSigned},
        {"self-signed and trusted", alone, {}, {&alone}, Status::Good},
        {"issued by a signer", belowSigner, {&good, &a.issuer}, {&a.root}, Status::InvalidChain},
        {"one issuer too many", belowTooDeep, {&tooDeep, &last}, {&a.root}, Status::InvalidChain},
        {"signed by another key", forged, {&a.issuer}, {&a.root}, Status::BadSignature},
    };
    for (const Case& c : cases)
        EXPECT_EQ(validate(c.signer, c.chain, c.trusted, optionsAtCheckTime()), c.status) << c.name;
}

TEST(Validation, timeAndPurposeDecide) {
    const Authorities a;
    const auto usage = [&a](const char* key, const char* extended) {
        return a.signer([key, extended](CertificateRecipe& r) {
            r.keyUsage = key;
            r.extendedKeyUsage = extended;
        });
    };
    const auto validity = [&a](const char* from, const char* to) {
        return a.signer([from, to](CertificateRecipe& r) {
            r.notBefore = from;
            r.notAfter = to;
        });
    };
    const std::pair<Identity, Status> cases[] = {
        {validity("20300601000000Z", "20300601000001Z"), Status::Good},
        {validity("20000101000000Z", "20300531235959Z"), Status::Expired},
        {validity("20300601000001Z", "20400101000000Z"), Status::NotYetValid},
        {usage("digitalSignature", ""), Status::Good},
        {usage("nonRepudiation", "emailProtection"), Status::Good},
        {usage("", "codeSigning"), Status::Good},
        // Document signing, RFC 9336, is the latter.
        {usage("", "serverAuth,1.3.6.1.5.5.7.3.36"), Status::Good},
        {usage("", "anyExtendedKeyUsage"), Status::Good},
        {usage("keyEncipherment", ""), Status::WrongPurpose},
        {usage("keyEncipherment", "codeSigning"), Status::WrongPurpose},
        {usage("digitalSignature", "serverAuth,clientAuth"), Status::WrongPurpose},
        {usage("", "timeStamping"), Status::WrongPurpose},
        {usage("", "OCSPSigning"), Status::WrongPurpose},
    };
    for (const auto& [signer, status] : cases)
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, optionsAtCheckTime()), status)
            << &status - &cases[0].second;

    // Without a time it is now.
    EXPECT_EQ(validate(a.signer(), {&a.issuer}, {&a.root}, {}), Status::Good);
    EXPECT_EQ(validate(validity("20000101000000Z", "20010101000000Z"), {&a.issuer}, {&a.root}, {}),
              Status::Expired);
    EXPECT_EQ(validate(validity("99980101000000Z", "99991231235959Z"), {&a.issuer}, {&a.root}, {}),
              Status::NotYetValid);
}

TEST(Validation, weakAlgorithmsPassOnRequestAlone) {
    const Authorities a;
    const Identity shortKey = a.signer([](CertificateRecipe& r) { r.rsaBits = 1024; });
    const Identity oldDigest = a.signer([](CertificateRecipe& r) { r.digest = EVP_sha1(); });
    const Identity older = makeSigner(nullptr, [](CertificateRecipe& r) { r.digest = EVP_md5(); });
    CertificateValidationOptions keys = optionsAtCheckTime(), digests = optionsAtCheckTime();
    keys.setAcceptingWeakKeys(true);
    digests.setAcceptingWeakDigests(true);
    const auto none = optionsAtCheckTime();
    for (const auto& [signer, accepting, other] :
         {std::tie(shortKey, keys, digests), {oldDigest, digests, keys}}) {
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, none), Status::WeakAlgorithm);
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, other), Status::WeakAlgorithm);
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, accepting), Status::Good);
    }
    EXPECT_EQ(validate(older, {}, {&older}, none), Status::Good)
        << "the store vouches for it, not its digest";
}

TEST(Validation, revocationListsDecide) {
    const Authorities a;
    const Identity good = a.signer(), bad = a.signer();
    const auto list = [](const Identity& issuer, const std::vector<const Identity*>& revoked,
                         const char* from = "20300101000000Z", const char* to = "20310101000000Z") {
        return makeRevocationList(issuer, revoked, from, to);
    };
    const Identity impostor = makeIssuer("Issuer", &a.otherRoot);
    const auto runOut = [&list](const Identity& issuer, const std::vector<const Identity*>& revoked) {
        return list(issuer, revoked, "20290101000000Z", "20300101000000Z");
    };
    const Bytes clean = list(a.issuer, {});
    const Bytes newer = list(a.issuer, {&bad}, "20320101000000Z", "20330101000000Z");
    const std::tuple<const char*, const Identity&, std::vector<Bytes>, Status> cases[] = {
        {"covered", good, {list(a.issuer, {&bad})}, Status::Good},
        {"revoked", bad, {list(a.issuer, {&bad})}, Status::Revoked},
        {"issuer revoked", good, {list(a.issuer, {}), list(a.root, {&a.issuer})}, Status::Revoked},
        {"issuer covered", good, {list(a.issuer, {}), list(a.root, {&bad})}, Status::Good},
        {"not covered", good, {list(a.root, {})}, Status::RevocationUnknown},
        {"run out", good, {runOut(a.issuer, {})}, Status::RevocationUnknown},
        {"run out above", good, {clean, runOut(a.root, {&bad})}, Status::Good},
        {"run out above, issuer revoked", good, {clean, runOut(a.root, {&a.issuer})}, Status::Revoked},
        {"newer", good, {list(a.issuer, {}, "20320101000000Z", "20330101000000Z")}, Status::Good},
        {"newer, revoked", bad, {newer}, Status::Revoked},
        {"clean, then revoked", bad, {clean, newer}, Status::Revoked},
        {"clean, then revoked, the other way round", bad, {newer, clean}, Status::Revoked},
        {"revoked by what has run out", bad, {runOut(a.issuer, {&bad}), clean}, Status::Revoked},
        {"issuer revoked, run out",
         good,
         {clean, list(a.root, {}), runOut(a.root, {&a.issuer})},
         Status::Revoked},
        {"named by another key", bad, {clean, runOut(impostor, {&bad})}, Status::Good},
        {"signed by another key", bad, {list(impostor, {})}, Status::RevocationUnknown},
    };
    for (const auto& [name, signer, lists, status] : cases) {
        CertificateValidationOptions options = optionsAtCheckTime();
        for (const Bytes& bytes : lists)
            options.addRevocationList(bytes);
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, options), status) << name;
        options.setUsingRevocationLists(false);
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, options), Status::Good) << name;
    }
    CertificateValidationOptions required = optionsAtCheckTime();
    required.setUsingRevocationLists(true);
    EXPECT_EQ(validate(good, {&a.issuer}, {&a.root}, required), Status::RevocationUnknown);
    Bytes cut = list(a.issuer, {&bad});
    cut.pop_back();
    for (const Bytes& bytes : {cut, Bytes(), a.root.certificate.getAsByteArray()})
        EXPECT_TRUE(fails<CertificateException>([&] { required.addRevocationList(bytes); }));
}

TEST(Validation, hugeKeysEndSoon) {
    const Authorities a;
    const auto start = std::chrono::steady_clock::now();
    const Identity signer = a.signer([](CertificateRecipe& r) { r.key = makePublicKey(1 << 20, {1, 0, 1}); });
    EXPECT_EQ(signer.certificate.getKeySize(), std::size_t{8} << 20);
    EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, optionsAtCheckTime()), Status::Good);

    const auto makeRsaIssuer = [&a](const std::shared_ptr<EVP_PKEY>& key) {
        return makeSigner(&a.root, [&key](CertificateRecipe& r) {
            r.subject = "RSA issuer";
            r.basicConstraints = "critical,CA:TRUE";
            r.key = key;
        });
    };
    const Identity issuer = makeRsaIssuer(nullptr);
    const Identity inItsName = makeRsaIssuer(makePublicKey(1 << 20, {1, 0, 1}));
    const Identity below = makeSigner(&issuer);
    EXPECT_EQ(validate(below, {&issuer}, {&a.root}, optionsAtCheckTime()), Status::Good);
    EXPECT_EQ(validate(below, {&inItsName}, {&a.root}, optionsAtCheckTime()), Status::BadSignature);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(Validation, longChainsEndSoon) {
    std::vector<Identity> issuers{makeIssuer("Issuer 0")};
    for (int depth = 1; depth < 150; ++depth)
        issuers.push_back(makeIssuer("Issuer " + std::to_string(depth), &issuers.back()));
    const Identity signer = makeSigner(&issuers.back());
    std::vector<const Identity*> chain;
    for (int copies = 0; copies < 20; ++copies)
        for (const Identity& issuer : issuers)
            chain.push_back(&issuer);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(validate(signer, chain, {&issuers.front()}, optionsAtCheckTime()), Status::InvalidChain);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

} // namespace
