#include "Bindings.hpp"
#include "Session.hpp"
#include "Values.hpp"

#include <bedrock/certificates/KeyBundle.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <bedrock/crypto/SigningKey.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/SignaturePolicy.hpp>
#include <opc/model/SignatureVerdict.hpp>
#include <opc/standard_signatures/CoverageTable.hpp>
#include <opc/standard_signatures/Signing.hpp>
#include <opc/standard_signatures/Verification.hpp>

#include <pybind11/stl.h>

#include <array>
#include <cctype>
#include <stdexcept>

namespace opcpython {

using namespace opc::standard_signatures;
using bedrock::certificates::X509Certificate;
using bedrock::crypto::DigestAlgorithm;
using opc::model::JudgedSignature;
using opc::model::SignaturePolicy;

namespace {

using SharedSession = std::shared_ptr<Session>;
using Bytes = std::vector<unsigned char>;
using Time = std::chrono::system_clock::time_point;

Bytes toBytes(const std::string& bytes) {
    return {bytes.begin(), bytes.end()};
}

std::optional<Time> toTime(std::optional<double> seconds) {
    if (!seconds)
        return std::nullopt;
    return Time(std::chrono::duration_cast<Time::duration>(std::chrono::duration<double>(*seconds)));
}

std::vector<X509Certificate> readCertificates(const std::vector<std::string>& all) {
    std::vector<X509Certificate> certificates;
    for (const std::string& one : all)
        certificates.emplace_back(toBytes(one));
    return certificates;
}

/// Who signs: a key with its certificates, or a bundle of both.
Signer readSigner(const std::string& key, const std::vector<std::string>& certificates,
                  const std::string& bundle, const std::string& password) {
    if (!bundle.empty()) {
        auto read = bedrock::certificates::readKeyBundle(toBytes(bundle), password);
        return {std::move(read.key), read.certificate, read.others};
    }
    Signer signer{bedrock::crypto::readSigningKey(toBytes(key)), {}, {}};
    auto all = readCertificates(certificates);
    if (!all.empty()) {
        signer.certificate = all.front();
        signer.chain.assign(all.begin() + 1, all.end());
    }
    return signer;
}

template <typename Value, std::size_t count>
Value choose(const std::array<std::pair<const char*, Value>, count>& all, const std::string& name) {
    for (const auto& [known, value] : all)
        if (name == known)
            return value;
    throw std::invalid_argument(name + " isn't supported");
}

/// @return the name and the part of the signature, and the parts to which no relationship leads
std::tuple<std::string, std::string, std::vector<std::string>, std::vector<std::string>>
signStandard(const SharedSession& session, const std::string& key,
             const std::vector<std::string>& certificates, const std::string& bundle,
             const std::string& password, const std::string& digest, bool acceptWeak, bool all,
             const std::vector<std::string>& parts,
             const std::vector<std::pair<std::string, std::string>>& relationships,
             const std::string& comments, std::optional<double> time) {
    SigningOptions options;
    options.digest = choose(std::array{std::pair("sha256", DigestAlgorithm::SHA256),
                                       std::pair("sha384", DigestAlgorithm::SHA384),
                                       std::pair("sha512", DigestAlgorithm::SHA512)},
                            digest);
    options.acceptWeak = acceptWeak;
    options.signsAll = all;
    options.parts = parts;
    for (const auto& [source, id] : relationships)
        options.relationships.push_back({source, id});
    options.comments = comments;
    options.time = toTime(time);
    return session->use([&] {
        session->requireSaved();
        const Signer signer = readSigner(key, certificates, bundle, password);
        const NewSignature made = sign(session->package(), session->store(), signer, options);
        session->setChanged();
        return std::tuple(made.name, made.part, made.unreachable, made.dangling);
    });
}

/// Signs everything in the library's own profile.
std::string signOwn(const SharedSession& session, const std::string& key, const std::string& digest) {
    using opc::model::DigestMethod;
    const DigestMethod method = choose(
        std::array{std::pair("sha224", DigestMethod::SHA224), std::pair("sha256", DigestMethod::SHA256),
                   std::pair("sha384", DigestMethod::SHA384), std::pair("sha512", DigestMethod::SHA512)},
        digest);
    return session->use([&] {
        const auto read = bedrock::crypto::readSigningKey(toBytes(key));
        const std::size_t bits = bedrock::crypto::getPublicKeyNumbers(read.getPublicKey()).modulus.size() * 8;
        const opc::model::SignatureParams params(method, opc::model::keySizeToSignatureMethod(bits));
        const auto signature = session->signatures().signPackage(read.getPrivateKey(), params);
        session->setChanged();
        return toText(signature.getName());
    });
}

/// Removes a signature of either profile.
void removeSignature(const SharedSession& session, const std::string& name, const std::string& part) {
    session->use([&] {
        if (part.empty())
            session->signatures().removeSignature(fromText(name));
        else
            opc::standard_signatures::removeSignature(session->package(), session->store(), part);
        session->setChanged();
    });
}

/// What is required of signatures, and who is trusted.
struct Policy {
    bool acceptWeak = false;
    bool acceptMissingNull = false;
    bool checksTrust = false;
    std::vector<std::string> roots;
    bool trustsSystem = false;
    std::vector<std::string> fingerprints;
    std::string publicKey; ///< in DER
    std::vector<std::string> revocationLists;
    std::optional<double> time; ///< in seconds since 1970

    bedrock::certificates::TrustStore store() const {
        bedrock::certificates::TrustStore made;
        for (const X509Certificate& root : readCertificates(roots))
            made.addCertificate(root);
        if (trustsSystem)
            made.addSystemCertificates(bedrock::certificates::TrustStore::Usage::Signing, false);
        return made;
    }

    bedrock::certificates::CertificateValidationOptions validation() const {
        bedrock::certificates::CertificateValidationOptions options;
        options.setAcceptingWeakKeys(acceptWeak);
        options.setAcceptingWeakDigests(acceptWeak);
        options.setCheckTime(toTime(time));
        for (const std::string& list : revocationLists)
            options.addRevocationList(toBytes(list));
        return options;
    }

    VerificationPolicy ofStandard() const {
        VerificationPolicy policy;
        policy.acceptWeak = acceptWeak;
        policy.acceptMissingNull = acceptMissingNull;
        if (!checksTrust)
            return policy;
        auto& trust = policy.trust.emplace();
        trust.roots = store();
        trust.validation = validation();
        for (const std::string& fingerprint : fingerprints) {
            trust.fingerprints.emplace_back();
            for (const char digit : fingerprint)
                trust.fingerprints.back() += static_cast<char>(std::tolower(digit));
        }
        if (!publicKey.empty())
            trust.publicKeys.push_back(toBytes(publicKey));
        return policy;
    }

    SignaturePolicy ofOwn() const {
        bedrock::codesigning_verifier::FingerprintStore known;
        for (const std::string& fingerprint : fingerprints)
            known.addFingerprint(fingerprint);
        SignaturePolicy policy = !publicKey.empty() ? SignaturePolicy::byPublicKey(toBytes(publicKey))
                                 : roots.empty() && !trustsSystem
                                     ? SignaturePolicy::byFingerprints(known)
                                     : SignaturePolicy::byTrust(store(), validation(), known);
        return policy.acceptWeak(acceptWeak);
    }
};

py::object orNone(const X509Certificate& certificate, std::string (X509Certificate::*known)() const) {
    return certificate.empty() ? py::object(py::none()) : py::object(toPython((certificate.*known)()));
}

py::object orNone(const std::optional<Time>& time) {
    return time ? py::cast(std::chrono::duration<double>(time->time_since_epoch()).count())
                : py::object(py::none());
}

template <typename Enumeration, std::size_t count>
const char* nameOf(const std::array<const char*, count>& names, Enumeration value) {
    return names.at(static_cast<std::size_t>(value));
}

/// The members of the classes in Python with these names.
/// @{
py::tuple toRow(const Reason& reason);
py::tuple toRow(const Unsigned& gap);
py::tuple toRow(const CheckedReference& one);
py::tuple toRow(const VerifiedSignature& one);
py::tuple toRow(const JudgedSignature& judged);
py::tuple toRow(const CoverageTable::Row& row);
/// @}

py::tuple toRow(const Reason& reason) {
    return py::make_tuple(toPython(reason.place), toPython(reason.text));
}

template <typename Element>
py::list toRows(const std::vector<Element>& all) {
    py::list rows;
    for (const Element& one : all)
        rows.append(toRow(one));
    return rows;
}

py::tuple toRow(const Unsigned& gap) {
    constexpr std::array NAMES{"part", "content type", "relationship", "item", "main document"};
    return py::make_tuple(nameOf(NAMES, gap.kind), toPython(gap.place), opcpython::orNone(gap.id),
                          opcpython::orNone(gap.type), toPython(gap.text));
}

py::tuple toRow(const CheckedReference& one) {
    return py::make_tuple(toPython(one.uri), toPython(one.digest), !one.wrong,
                          toPython(one.wrong ? one.wrong->text : ""));
}

py::tuple toRow(const CryptographyAnswer& answer) {
    constexpr std::array NAMES{"valid", "weak", "broken"};
    return py::make_tuple(nameOf(NAMES, answer.status), toPython(answer.method), answer.keyBits,
                          toRows(answer.reasons), toRows(answer.references), answer.referenceCount);
}

py::tuple toRow(const CoverageAnswer& answer) {
    return py::make_tuple(answer.isComplete() ? "complete" : "partial", answer.signedParts,
                          answer.signedRelationships, toRows(answer.gaps), answer.gapCount,
                          toRows(answer.byCustom), answer.externalTargets);
}

py::tuple toRow(const TrustAnswer& answer) {
    constexpr std::array NAMES{"not checked", "unknown", "trusted", "not trusted"};
    constexpr std::array TIMES{"now", "caller", "time stamp"};
    return py::make_tuple(nameOf(NAMES, answer.status), toPython(answer.reason),
                          orNone(answer.signer, &X509Certificate::getSubject),
                          orNone(answer.signer, &X509Certificate::getSHA256Fingerprint), orNone(answer.time),
                          nameOf(TIMES, answer.timeFrom), toPython(answer.timeStampFailure));
}

py::tuple toRow(const VerifiedSignature& one) {
    return py::make_tuple(toPython(one.name), toPython(one.part), toRow(one.cryptography),
                          toRow(one.coverage), toRow(one.trust), opcpython::orNone(one.claimedTime),
                          one.isYes);
}

py::tuple toRow(const JudgedSignature& judged) {
    return py::make_tuple(
        toPython(toText(judged.signature.getName())), judged.holds, judged.code.value(),
        toPython(judged.status), toPython(judged.reason), orNone(judged.signer, &X509Certificate::getSubject),
        orNone(judged.signer, &X509Certificate::getSHA256Fingerprint),
        opcpython::orNone(toText(opc::convertTimeToString(judged.claimedTime))), judged.weaknesses);
}

/// The signatures in the standard's profile, and what is wrong with the package.
py::tuple verifyStandard(const SharedSession& session, const Policy& policy) {
    const PackageVerification found = session->use([&] {
        session->requireOpen();
        return verify(session->store(), policy.ofStandard());
    });
    return py::make_tuple(toRows(found.signatures), toRows(found.problems));
}

/// The signatures in the library's own profile, why these aren't a yes, and what they don't cover.
py::tuple verifyOwn(const SharedSession& session, const Policy& policy) {
    const auto verdict = session->use([&] { return session->signatures().judge(policy.ofOwn()); });
    py::list reasons;
    for (const auto& reason : verdict.getReasons())
        if (reason.kind != opc::model::VerdictReason::Kind::ForeignForm &&
            reason.kind != opc::model::VerdictReason::Kind::NoSignatures)
            reasons.append(toPython(reason.text));
    return py::make_tuple(toRows(verdict.getSignatures()), reasons);
}

/// Place, ID and type, why it needn't be signed, and which signatures protect it.
py::tuple toRow(const CoverageTable::Row& row) {
    constexpr std::array NAMES{"content", "left out by custom", "of signatures"};
    return py::make_tuple(toPython(row.place), opcpython::orNone(row.id), opcpython::orNone(row.type),
                          nameOf(NAMES, row.standing), row.signatures);
}

py::tuple tabulate(const SharedSession& session, const Policy& policy) {
    const CoverageTable table = session->use([&] {
        session->requireOpen();
        return tabulateCoverage(session->store(), policy.ofStandard());
    });
    return py::make_tuple(toRows(table.verification.signatures), toRows(table.parts),
                          toRows(table.relationships));
}

} // namespace

void bindSignatures(py::module_& module) {
    py::class_<Policy>(module, "Policy")
        .def(py::init<>())
        .def_readwrite("accept_weak", &Policy::acceptWeak)
        .def_readwrite("accept_missing_null", &Policy::acceptMissingNull)
        .def_readwrite("checks_trust", &Policy::checksTrust)
        .def_readwrite("roots", &Policy::roots)
        .def_readwrite("trusts_system", &Policy::trustsSystem)
        .def_readwrite("fingerprints", &Policy::fingerprints)
        .def_readwrite("public_key", &Policy::publicKey)
        .def_readwrite("revocation_lists", &Policy::revocationLists)
        .def_readwrite("time", &Policy::time);
    module.def("sign_standard", &signStandard);
    module.def("sign_own", &signOwn);
    module.def("remove_signature", &removeSignature);
    module.def("verify_standard", &verifyStandard);
    module.def("verify_own", &verifyOwn);
    module.def("tabulate_coverage", &tabulate);
}

} // namespace opcpython
