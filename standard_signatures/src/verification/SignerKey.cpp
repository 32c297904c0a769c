#include "verification/SignerKey.hpp"

#include "reason/Refusal.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace opc::standard_signatures {

namespace {

using bedrock::certificates::X509Certificate;
using bedrock::crypto::PublicKeyKind;
using bedrock::crypto::SignatureScheme;
using bedrock::crypto::SignatureValueStatus;
using Bytes = std::vector<unsigned char>;
using Code = Reason::Code;

constexpr std::size_t LEAST_RSA_BITS = 1024;

struct Candidate {
    Bytes key;
    X509Certificate certificate;
};

bool isNamed(const X509Certificate& certificate, const std::vector<StatedDigest>& named, Digester& digester) {
    const Bytes der = certificate.getAsByteArray();
    const std::string octets(der.begin(), der.end());
    std::map<const DigestMethod*, Bytes> digests;
    return std::any_of(named.begin(), named.end(), [&](const StatedDigest& digest) {
        Bytes& computed = digests[digest.method];
        if (computed.empty())
            computed = digester.of(octets, *digest.method);
        return computed == digest.value;
    });
}

std::vector<Candidate> findCandidates(const SignatureDocument& document,
                                      std::vector<X509Certificate> certificates, Digester& digester) {
    const std::vector<Bytes>& keys = document.keys.keys;
    if (!std::equal(keys.begin() + (keys.empty() ? 0 : 1), keys.end(), keys.begin()))
        throw Refusal(Code::KeyMismatch, "", "The signature names different keys");
    if (!document.signerCertificates.empty()) {
        certificates.erase(std::remove_if(certificates.begin(), certificates.end(),
                                          [&](const X509Certificate& one) {
                                              return !isNamed(one, document.signerCertificates, digester);
                                          }),
                           certificates.end());
        if (certificates.empty())
            throw Refusal(Code::CertificateMismatch, "",
                          "The certificate isn't the one that the signer names");
    }
    if (certificates.empty())
        return {{keys.front(), {}}};
    std::vector<Candidate> candidates;
    for (X509Certificate& certificate : certificates) {
        Bytes key = certificate.getPublicKey();
        if (keys.empty() || key == keys.front())
            candidates.push_back({std::move(key), std::move(certificate)});
    }
    if (candidates.empty())
        throw Refusal(Code::KeyMismatch, "",
                      "The signature names a key that isn't the one of its certificate");
    return candidates;
}

/// What the caller trusts. A key fits whichever certificate the signer names.
std::vector<Candidate> findTrusted(const SignatureDocument& document, const TrustPolicy& trusted,
                                   Digester& digester) {
    const std::vector<StatedDigest>& named = document.signerCertificates;
    std::vector<Candidate> candidates;
    for (const Bytes& key : trusted.publicKeys)
        candidates.push_back({key, {}});
    for (const X509Certificate& one : trusted.roots.getCertificates())
        if (named.empty() || isNamed(one, named, digester))
            candidates.push_back({one.getPublicKey(), one});
    return candidates;
}

void throwIfNotAccepted(const PublicKeyKind& kind, const SignatureMethod& method) {
    using Algorithm = PublicKeyKind::Algorithm;
    const bool isForCurves = method.scheme == SignatureScheme::ECDSA;
    const bool fits = kind.algorithm == Algorithm::EC       ? isForCurves
                      : kind.algorithm == Algorithm::RSA    ? !isForCurves
                      : kind.algorithm == Algorithm::RSAPSS ? method.scheme == SignatureScheme::RSAPSS
                                                            : false;
    if (!fits)
        throw Refusal(Code::KeyMismatch, "", std::string("The key isn't one for ") + method.name);
    if (isForCurves ? kind.curve.empty() : kind.bits < LEAST_RSA_BITS)
        throw Refusal(Code::AlgorithmNotAccepted, "",
                      isForCurves ? "The key is on a curve that isn't accepted"
                                  : "An RSA key of " + std::to_string(kind.bits) + " bits isn't accepted");
}

SignerKey tryKey(const SignatureDocument& document, const Candidate& candidate,
                 const std::string& signedInfo) {
    try {
        auto [status, kind] = bedrock::crypto::checkSignatureValue(
            candidate.key, document.method->scheme, document.method->algorithm, signedInfo, document.value);
        throwIfNotAccepted(kind, *document.method);
        return {candidate.key, std::move(kind), candidate.certificate, status};
    } catch (const bedrock::crypto::utils::InvalidKey& e) {
        throw Refusal(Code::NoKey, "", std::string("The key can't be used: ") + e.what());
    }
}

} // namespace

SignerKey findSignerKey(const SignatureDocument& document, const std::vector<X509Certificate>& certificates,
                        const TrustPolicy* trusted, const std::string& signedInfo, std::size_t& tries,
                        Digester& digester) {
    const bool namesNone = certificates.empty() && document.keys.keys.empty();
    std::vector<Candidate> candidates;
    if (!namesNone)
        candidates = findCandidates(document, certificates, digester);
    else if (trusted != nullptr)
        candidates = findTrusted(document, *trusted, digester);
    std::optional<SignerKey> best;
    std::optional<Refusal> refusal;
    for (const Candidate& candidate : candidates)
        try {
            if (tries == 0)
                throw Refusal(Code::BeyondLimit, "", "The signatures of the package have too many keys");
            --tries;
            SignerKey next = tryKey(document, candidate, signedInfo);
            const bool isRight = next.status != SignatureValueStatus::Wrong;
            if (isRight || !best)
                best = std::move(next);
            if (isRight)
                break;
        } catch (const Refusal& failure) { // a certificate of the chain may have another kind of key
            if (!refusal)
                refusal = failure;
        }
    if (namesNone && (!best || best->status == SignatureValueStatus::Wrong))
        throw Refusal(Code::NoKey, "", "The signature names no key, and none that is trusted has made it");
    if (!best)
        throw Refusal(*refusal);
    return *best;
}

} // namespace opc::standard_signatures
