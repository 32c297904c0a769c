#include "CheckTime.hpp"
#include "CryptoSupport.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>

namespace {

using namespace bedrock::certificates;
using namespace bedrock::test;
using Status = CertificateChainStatus;
constexpr Status Unknown = Status::RevocationUnknown;

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

/// A root, an issuer below it, another root, and signers that the issuer has certified.
struct Authorities {
    Identity root = makeIssuer("Root");
    Identity issuer = makeIssuer("Issuer", &root);
    Identity otherRoot = makeIssuer("Other root");

    Identity signer(const std::function<void(CertificateRecipe&)>& change = {}) const {
        return makeSigner(&issuer, change);
    }
};

/// An issuer with any kind of key.
Identity makeIssuerBelow(const Identity& above, const std::string& subject,
                         const std::function<void(CertificateRecipe&)>& change = {}) {
    return makeSigner(&above, [&](CertificateRecipe& r) {
        r.subject = subject;
        r.basicConstraints = "critical,CA:TRUE";
        if (change)
            change(r);
    });
}

Status validate(const Identity& identity, const std::vector<const Identity*>& chain,
                const std::vector<const Identity*>& trusted, const CertificateValidationOptions& options) {
    const auto results = identity.certificate.validateCertificate(chainOf(chain), options, storeOf(trusted));
    EXPECT_EQ(results.getValidationErrorString().empty(),
              results.getCertificateChainStatus() == Status::Good);
    EXPECT_EQ(ERR_peek_error(), 0u);
    return results.getCertificateChainStatus();
}

/// The weak algorithms, each as "place algorithm name;".
std::string weakIn(const Identity& identity, const std::vector<const Identity*>& chain,
                   const std::vector<const Identity*>& trusted, const CertificateValidationOptions& options) {
    const auto results = identity.certificate.validateCertificate(chainOf(chain), options, storeOf(trusted));
    std::string text;
    for (const WeakAlgorithm& weak : results.getWeakAlgorithms())
        text += std::to_string(int(weak.place)) + " " + weak.algorithm + " " + weak.name + ";";
    return text;
}

TEST(Validation, theChainDecides) {
    const Authorities a;
    const Identity good = a.signer();
    const Identity alone = makeSigner(nullptr);
    const Identity belowSigner = makeSigner(&good, [](CertificateRecipe& r) { r.subject = "Below signer"; });
    const Identity last = makeIssuerBelow(a.root, "No further",
                                          [](CertificateRecipe& r) { r.basicConstraints += ",pathlen:0"; });
    const Identity tooDeep = makeIssuer("Too deep", &last);
    const Identity belowTooDeep = makeSigner(&tooDeep);
    // A certificate in the issuer's name, made with another key.
    const Identity impostor = makeIssuer("Issuer", &a.otherRoot);
    const Identity forged = makeSigner(&impostor);
    const auto issuerWith = [&a](const Extensions& extensions) {
        return makeIssuerBelow(a.root, "Issuer with more",
                               [&extensions](CertificateRecipe& r) { r.furtherExtensions = extensions; });
    };
    const auto signerWith = [](const Identity& issuer, const Extensions& extensions) {
        return makeSigner(&issuer, [&](CertificateRecipe& r) { r.furtherExtensions = extensions; });
    };
    const Identity constrained = issuerWith({{"nameConstraints", "critical,permitted;email:good.example"}});
    const Identity inSubtree = signerWith(constrained, {{"subjectAltName", "email:a@good.example"}});
    const Identity outsideSubtree = signerWith(constrained, {{"subjectAltName", "email:a@evil.example"}});
    const Identity strict = issuerWith(
        {{"policyConstraints", "critical,requireExplicitPolicy:0"}, {"certificatePolicies", "1.2.3.4"}});
    const Identity withPolicy = signerWith(strict, {{"certificatePolicies", "1.2.3.4"}});
    const Identity withoutPolicy = signerWith(strict, {{"certificatePolicies", "1.2.3.5"}});
    const Identity critical = a.signer([](CertificateRecipe& r) {
        r.furtherExtensions = {{"1.2.3.4", "critical,ASN1:NULL"}};
    });
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
        {"name of a constrained subtree", inSubtree, {&constrained}, {&a.root}, Status::Good},
        {"name outside", outsideSubtree, {&constrained}, {&a.root}, Status::InvalidChain},
        {"policy required and there", withPolicy, {&strict}, {&a.root}, Status::Good},
        {"policy required, not there", withoutPolicy, {&strict}, {&a.root}, Status::InvalidChain},
        {"critical and unknown", critical, {&a.issuer}, {&a.root}, Status::InvalidChain},
    };
    for (const Case& c : cases)
        EXPECT_EQ(validate(c.signer, c.chain, c.trusted, optionsAtCheckTime()), c.status) << c.name;
}

TEST(Validation, certificatesThatLeadNowhereDontStandInTheWay) {
    const Authorities a;
    const Identity good = a.signer();
    // The same name and key, from another issuer or in another way.
    const auto again = [&a](const Identity& above,
                            const std::function<void(CertificateRecipe&)>& change = {}) {
        return makeIssuerBelow(above, "Issuer", [&](CertificateRecipe& r) {
            r.key = a.issuer.key;
            if (change)
                change(r);
        });
    };
    const auto crossedBy = [&a](const Identity& above) {
        return makeIssuerBelow(above, "Root", [&a](CertificateRecipe& r) { r.key = a.root.key; });
    };
    const Identity unknown = makeIssuer("Unknown root");
    const Identity crossed = crossedBy(a.otherRoot);
    const Identity crossedInVain = crossedBy(unknown);
    const Identity belowUnknown = again(unknown);
    const Identity otherKey = makeIssuer("Issuer", &a.root);
    const Identity expired = again(a.root, [](auto& r) { r.notAfter = "20100101000000Z"; });
    const Identity limited = again(a.root, [](auto& r) { r.extendedKeyUsage = "serverAuth"; });
    const Identity old = again(a.root, [](auto& r) { r.digest = EVP_sha1(); });
    const Identity signer = again(a.root, [](auto& r) { r.basicConstraints.clear(); });
    const std::tuple<const char*, std::vector<const Identity*>, const Identity&> cases[] = {
        {"self-signed beside a cross certificate", {&a.issuer, &a.root, &crossed}, a.otherRoot},
        {"cross certificate of an unknown root", {&a.issuer, &crossedInVain, &crossed}, a.otherRoot},
        {"both", {&a.issuer, &unknown, &crossedInVain, &a.root, &crossed}, a.otherRoot},
        {"a way that ends further up", {&belowUnknown, &unknown, &a.issuer}, a.root},
        {"issuer's name, other key", {&otherKey, &a.issuer}, a.root},
        {"expired", {&expired, &a.issuer}, a.root},
        {"limited", {&limited, &a.issuer}, a.root},
        {"weak", {&old, &a.issuer}, a.root},
        {"not an issuer", {&signer, &a.issuer}, a.root},
    };
    for (const auto& [name, chain, trusted] : cases) {
        EXPECT_EQ(validate(good, chain, {&trusted}, optionsAtCheckTime()), Status::Good) << name;
        const std::vector<const Identity*> reversed(chain.rbegin(), chain.rend());
        EXPECT_EQ(validate(good, reversed, {&trusted}, optionsAtCheckTime()), Status::Good) << name;
    }
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
        {usage("", "1.3.6.1.4.1.311.10.3.12"), Status::Good}, // the same, by an older number
        {usage("", "anyExtendedKeyUsage"), Status::Good},
        {usage("keyEncipherment", ""), Status::WrongPurpose},
        {usage("keyEncipherment", "codeSigning"), Status::WrongPurpose},
        {usage("digitalSignature", "serverAuth,clientAuth"), Status::WrongPurpose},
        {usage("", "timeStamping"), Status::WrongPurpose},
        {usage("", "OCSPSigning"), Status::WrongPurpose},
        {usage("", "ipsecIKE"), Status::WrongPurpose},
        {usage("", "clientAuth,1.3.6.1.4.1.311.20.2.2"), Status::WrongPurpose},
        {usage("", "critical,1.3.6.1.4.1.99999.1"), Status::WrongPurpose},
        {a.signer([](CertificateRecipe& r) {
             r.furtherExtensions = {{"2.5.29.37", "ASN1:NULL"}}; // can't be read
         }),
         Status::UnknownIssuer},
        {a.signer([](CertificateRecipe& r) { r.rsaBits = 0; }), Status::WrongPurpose},
        {a.signer([](CertificateRecipe& r) { r.key = opc::test::makePssKey(); }), Status::WrongPurpose},
        {a.signer([](CertificateRecipe& r) { r.key = makePublicKey(256, {1}); }), Status::WrongPurpose},
        {a.signer([](CertificateRecipe& r) { r.key = makePublicKey(256, {2}); }), Status::WrongPurpose},
    };
    for (const auto& [signer, status] : cases)
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, optionsAtCheckTime()), status)
            << &status - &cases[0].second;

    // Without a time, the present time counts.
    EXPECT_EQ(validate(a.signer(), {&a.issuer}, {&a.root}, {}), Status::Good);
    EXPECT_EQ(validate(validity("20000101000000Z", "20010101000000Z"), {&a.issuer}, {&a.root}, {}),
              Status::Expired);
    EXPECT_EQ(validate(validity("99980101000000Z", "99991231235959Z"), {&a.issuer}, {&a.root}, {}),
              Status::NotYetValid);
}

TEST(Validation, timesBeyond32BitsBecomeTheLast) {
    const auto after1970 = [](std::int64_t seconds) {
        return std::chrono::system_clock::time_point(std::chrono::seconds(seconds));
    };
    for (const auto& [seconds, expected] : {std::pair<std::int64_t, std::int32_t>{1906502400, 1906502400},
                                            {2147483648, 2147483647},
                                            {4102444800, 2147483647},
                                            {-2147483649, -2147483647 - 1}}) {
        EXPECT_EQ(detail::toSystemTime<std::int32_t>(after1970(seconds)), expected) << seconds;
        EXPECT_EQ(detail::toSystemTime<std::int64_t>(after1970(seconds)), seconds);
    }
}

TEST(Validation, issuersLimitTheUsagesBelowThem) {
    const Identity root = makeIssuer("Root");
    struct Case {
        const char *issuer, *signer;
        Status status;
    };
    const Case cases[] = {
        {"codeSigning", "", Status::Good},
        {"codeSigning", "codeSigning,serverAuth", Status::Good},
        {"anyExtendedKeyUsage", "emailProtection", Status::Good},
        {"serverAuth,emailProtection", "anyExtendedKeyUsage", Status::Good},
        {"1.3.6.1.5.5.7.3.36", "1.3.6.1.5.5.7.3.36", Status::Good},
        {"codeSigning", "emailProtection", Status::WrongPurpose},
        {"serverAuth", "codeSigning", Status::WrongPurpose},
        {"serverAuth,clientAuth", "", Status::WrongPurpose},
        {"timeStamping", "anyExtendedKeyUsage", Status::WrongPurpose},
    };
    for (const Case& c : cases) {
        const Identity issuer =
            makeIssuerBelow(root, "Limited", [&c](CertificateRecipe& r) { r.extendedKeyUsage = c.issuer; });
        const Identity signer =
            makeSigner(&issuer, [&c](CertificateRecipe& r) { r.extendedKeyUsage = c.signer; });
        EXPECT_EQ(validate(signer, {&issuer}, {&root}, optionsAtCheckTime()), c.status)
            << c.issuer << c.signer;
        EXPECT_EQ(validate(signer, {}, {&issuer}, optionsAtCheckTime()), c.status) << c.issuer << c.signer;
    }
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
    const std::string weakKey = "0 RSA 1024 CN=Signer;", weakDigest = "1 SHA-1 CN=Signer;";
    for (const auto& [signer, accepting, other, weak] :
         {std::tie(shortKey, keys, digests, weakKey), {oldDigest, digests, keys, weakDigest}}) {
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, none), Status::WeakAlgorithm);
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, other), Status::WeakAlgorithm);
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, accepting), Status::Good);
        for (const auto& options : {none, accepting})
            EXPECT_EQ(weakIn(signer, {&a.issuer}, {&a.root}, options), weak);
    }
    const Identity oldIssuer = makeIssuerBelow(a.root, "Old issuer", [](CertificateRecipe& r) {
        r.rsaBits = 1024;
        r.digest = EVP_sha1();
    });
    const Identity below = makeSigner(&oldIssuer, [](CertificateRecipe& r) { r.digest = EVP_md5(); });
    const std::string weakBelow = "1 MD5 CN=Signer;0 RSA 1024 CN=Old issuer;";
    EXPECT_EQ(weakIn(below, {&oldIssuer}, {&a.root}, none), weakBelow + "1 SHA-1 CN=Old issuer;");
    EXPECT_EQ(weakIn(below, {}, {&oldIssuer}, none), weakBelow);
    EXPECT_EQ(weakIn(a.signer(), {&a.issuer}, {&a.root}, none), "");
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
    const auto with = [](const char* extension, const std::string& value, const Identity& issuer,
                         const std::vector<const Identity*>& revoked = {}) {
        return makeRevocationList(issuer, revoked, "20300101000000Z", "20310101000000Z",
                                  {{extension, value}});
    };
    const auto delta = [&](const std::vector<const Identity*>& revoked = {}) {
        return with("2.5.29.27", "critical,ASN1:INTEGER:1", a.issuer, revoked);
    };
    const auto unknown = [&](const Identity& issuer, const std::vector<const Identity*>& revoked = {}) {
        return with("1.2.3.4", "critical,ASN1:NULL", issuer, revoked);
    };
    const auto within = [&](const char* scope, const Identity& issuer) {
        return with("issuingDistributionPoint", std::string("critical,") + scope, issuer);
    };
    const Identity elsewhere = a.signer([](CertificateRecipe& r) {
        r.furtherExtensions = {{"crlDistributionPoints", "URI:http://e/1"}};
    });
    const Identity ofRoot = makeSigner(&a.root);
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
        {"not covered", good, {list(a.root, {})}, Unknown},
        {"run out", good, {runOut(a.issuer, {})}, Unknown},
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
        {"signed by another key", bad, {list(impostor, {})}, Unknown},
        {"delta", good, {delta()}, Unknown},
        {"delta, not critical", good, {with("2.5.29.27", "ASN1:INTEGER:1", a.issuer)}, Unknown},
        {"delta beside a complete list", good, {delta(), clean}, Status::Good},
        {"revoked by a delta", bad, {clean, delta({&bad})}, Status::Revoked},
        {"critical and unknown", good, {unknown(a.issuer)}, Unknown},
        {"the same above", good, {clean, unknown(a.root)}, Status::Good},
        {"revoked by it", bad, {clean, unknown(a.issuer, {&bad})}, Status::Revoked},
        {"for users", good, {within("onlyuser:TRUE", a.issuer)}, Status::Good},
        {"for users of the root", ofRoot, {within("onlyuser:TRUE", a.root)}, Status::Good},
        {"for issuers", good, {within("onlyCA:TRUE", a.issuer)}, Unknown},
        {"for attributes", good, {within("onlyAA:TRUE", a.issuer)}, Unknown},
        {"for some reasons", good, {within("onlysomereasons:keyCompromise", a.issuer)}, Unknown},
        {"indirect", good, {within("indirectCRL:TRUE", a.issuer)}, Unknown},
        {"of a place", good, {within("fullname:URI:http://e/1", a.issuer)}, Unknown},
        {"of the place", elsewhere, {within("fullname:URI:http://e/1", a.issuer)}, Status::Good},
        {"of another", elsewhere, {within("fullname:URI:http://e/2", a.issuer)}, Unknown},
    };
    for (const auto& [name, signer, lists, status] : cases) {
        CertificateValidationOptions options = optionsAtCheckTime();
        for (const Bytes& bytes : lists)
            options.addRevocationList(bytes);
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, options), status) << name;
        options.setUsingRevocationLists(false);
        EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, options), Status::Good) << name;
    }
    const Identity again =
        makeIssuerBelow(a.root, "Issuer", [&a](CertificateRecipe& r) { r.key = a.issuer.key; });
    CertificateValidationOptions revoking = optionsAtCheckTime();
    revoking.addRevocationList(clean);
    revoking.addRevocationList(list(a.root, {&a.issuer}));
    EXPECT_EQ(validate(good, {&a.issuer, &again}, {&a.root}, revoking), Status::Revoked)
        << "no other way is tried";
    CertificateValidationOptions required = optionsAtCheckTime();
    required.setUsingRevocationLists(true);
    EXPECT_EQ(validate(good, {&a.issuer}, {&a.root}, required), Status::RevocationUnknown);
    Bytes cut = list(a.issuer, {&bad});
    cut.pop_back();
    for (const Bytes& bytes : {cut, Bytes(), a.root.certificate.getAsByteArray()})
        EXPECT_TRUE(fails<CertificateException>([&] { required.addRevocationList(bytes); }));
}

/// Of what a time stamp proves to be older than the revocation.
TEST(Validation, laterRevocationsCountByTheirReason) {
    const Authorities a;
    const Identity bad = a.signer();
    const struct {
        int reason; ///< none if it is negative
        const char* invalidSince;
        const char* revoked;
        Status status;
    } cases[] = {
        {-1, nullptr, "20320101000000Z", Status::Revoked}, // without a reason
        {0, nullptr, "20320101000000Z", Status::Revoked},
        {1, nullptr, "20320101000000Z", Status::Revoked},
        {2, nullptr, "20320101000000Z", Status::Revoked},
        {3, nullptr, "20320101000000Z", Status::Good},
        {4, nullptr, "20320101000000Z", Status::Good},
        {5, nullptr, "20320101000000Z", Status::Good},
        {6, nullptr, "20320101000000Z", Status::Revoked},
        {9, nullptr, "20320101000000Z", Status::Revoked},
        {4, "20310101000000Z", "20320101000000Z", Status::Good},
        {4, "20290101000000Z", "20320101000000Z", Status::Revoked},
        {4, nullptr, "20300101000000Z", Status::Revoked}, // before
    };
    for (const auto& [reason, invalidSince, revoked, status] : cases) {
        opc::test::Extensions ofEntry;
        if (reason >= 0)
            ofEntry.emplace_back("2.5.29.21", "ASN1:ENUMERATED:" + std::to_string(reason));
        if (invalidSince != nullptr)
            ofEntry.emplace_back("2.5.29.24", std::string("ASN1:GENTIME:") + invalidSince);
        CertificateValidationOptions options = optionsAtCheckTime();
        options.addRevocationList(
            makeRevocationList(a.issuer, {&bad}, revoked, "20330101000000Z", {}, EVP_sha256(), ofEntry));
        EXPECT_EQ(validate(bad, {&a.issuer}, {&a.root}, options), Status::Revoked);
        options.setCheckTimeProven(true);
        EXPECT_EQ(validate(bad, {&a.issuer}, {&a.root}, options), status) << reason << " " << revoked;
    }
}

TEST(Validation, weakListsCoverOnRequestAloneAndRevokeAlways) {
    const Authorities a;
    const Identity pssIssuer =
        makeIssuerBelow(a.root, "PSS issuer", [](CertificateRecipe& r) { r.key = opc::test::makePssKey(); });
    const Identity edIssuer = makeIssuerBelow(a.root, "Ed25519 issuer", [](CertificateRecipe& r) {
        r.key.reset(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"), EVP_PKEY_free);
    });
    const auto signedBy = [](const Identity& issuer, const EVP_MD* digest,
                             const std::vector<const Identity*>& revoked = {}) {
        return makeRevocationList(issuer, revoked, "20300101000000Z", "20310101000000Z", {}, digest);
    };
    struct Case {
        const Identity& issuer;
        const EVP_MD* digest; ///< null if the key has its own digest
        std::string weak;     ///< empty if nothing is weak
    };
    const Case cases[] = {
        {a.issuer, EVP_sha1(), "2 SHA-1 CN=Issuer;"},
        {a.issuer, EVP_sha224(), ""},
        {a.issuer, EVP_sha512(), ""},
        {pssIssuer, EVP_sha1(), "2 SHA-1 CN=PSS issuer;"},
        {pssIssuer, EVP_sha256(), ""},
        {edIssuer, nullptr, ""},
    };
    for (const auto& [issuer, digest, weak] : cases) {
        const EVP_MD* const strong = digest ? EVP_sha256() : nullptr;
        const auto useStrong = [strong](CertificateRecipe& r) { r.digest = strong; };
        const Identity good = makeSigner(&issuer, useStrong), bad = makeSigner(&issuer, useStrong);
        CertificateValidationOptions options = optionsAtCheckTime();
        options.addRevocationList(signedBy(issuer, digest, {&bad}));
        options.addRevocationList(signedBy(a.otherRoot, EVP_sha1())); // not an issuer of the chain
        EXPECT_EQ(validate(good, {&issuer}, {&a.root}, options), weak.empty() ? Status::Good : Unknown)
            << weak;
        options.setAcceptingWeakDigests(true);
        EXPECT_EQ(validate(good, {&issuer}, {&a.root}, options), Status::Good) << weak;
        EXPECT_EQ(weakIn(good, {&issuer}, {&a.root}, options), weak);
        EXPECT_EQ(validate(bad, {&issuer}, {&a.root}, options), Status::Revoked) << weak;
        options.setAcceptingWeakDigests(false);
        options.addRevocationList(signedBy(issuer, strong));
        EXPECT_EQ(validate(bad, {&issuer}, {&a.root}, options), Status::Revoked) << weak;
        options.setAcceptingWeakDigests(true);
        EXPECT_EQ(weakIn(good, {&issuer}, {&a.root}, options), "") << "the strong list suffices";
    }
}

TEST(Validation, hugeKeysEndSoon) {
    const Authorities a;
    const std::clock_t start = std::clock();
    const Identity signer = a.signer([](CertificateRecipe& r) { r.key = makePublicKey(1 << 20, {1, 0, 1}); });
    EXPECT_EQ(signer.certificate.getKeySize(), std::size_t{8} << 20);
    EXPECT_EQ(validate(signer, {&a.issuer}, {&a.root}, optionsAtCheckTime()), Status::Good);

    const Identity issuer = makeIssuerBelow(a.root, "RSA issuer");
    const Identity inItsName = makeIssuerBelow(a.root, "RSA issuer", [](CertificateRecipe& r) {
        r.key = makePublicKey(1 << 20, {1, 0, 1});
    });
    const Identity below = makeSigner(&issuer);
    EXPECT_EQ(validate(below, {&issuer}, {&a.root}, optionsAtCheckTime()), Status::Good);
    EXPECT_EQ(validate(below, {&inItsName}, {&a.root}, optionsAtCheckTime()), Status::BadSignature);
    EXPECT_LT(std::clock() - start, 5 * CLOCKS_PER_SEC);
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
    const std::clock_t start = std::clock();
    EXPECT_EQ(validate(signer, chain, {&issuers.front()}, optionsAtCheckTime()), Status::InvalidChain);
    EXPECT_LT(std::clock() - start, 5 * CLOCKS_PER_SEC);
}

} // namespace
