#include "JSONRows.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>

#include <algorithm>
#include <array>

namespace opc::scanning {

namespace {

using namespace standard_signatures;
using model::JudgedSignature;
using nlohmann::ordered_json;

constexpr std::size_t LISTED = 1000; ///< gaps of a signature

const char* nameOf(CryptographyAnswer::Status status) {
    constexpr std::array NAMES{"valid", "weak", "broken"};
    return NAMES.at(static_cast<std::size_t>(status));
}

const char* nameOf(TrustAnswer::Status status) {
    constexpr std::array NAMES{"not checked", "unknown", "trusted", "not trusted"};
    return NAMES.at(static_cast<std::size_t>(status));
}

const char* nameOf(TrustAnswer::TimeFrom from) {
    constexpr std::array NAMES{"now", "caller", "time stamp"};
    return NAMES.at(static_cast<std::size_t>(from));
}

const char* nameOf(Unsigned::Kind kind) {
    constexpr std::array NAMES{"part", "content type", "relationship", "item", "main document"};
    return NAMES.at(static_cast<std::size_t>(kind));
}

const char* nameOf(const CoverageAnswer& coverage) {
    return coverage.isComplete() ? "complete" : "partial";
}

const char* nameOf(ScannedSignatures::State state) {
    constexpr std::array NAMES{"unsigned", "holds", "broken", "unreadable", "unproven"};
    return NAMES.at(static_cast<std::size_t>(state));
}

const char* nameOf(model::DigestMethod method) {
    switch (method) {
    case model::DigestMethod::MD5:
        return "md5";
    case model::DigestMethod::SHA1:
        return "sha1";
    case model::DigestMethod::SHA224:
        return "sha224";
    case model::DigestMethod::SHA256:
        return "sha256";
    case model::DigestMethod::SHA384:
        return "sha384";
    default:
        return "sha512";
    }
}

/// What a reason of the cryptography makes of its answer.
const char* effectOf(const Reason& reason) {
    return reason.code == Reason::Code::WeakAlgorithm     ? "weak: "
           : reason.code == Reason::Code::NullNotRequired ? "accepted: "
                                                          : "broken: ";
}

std::string textOf(std::chrono::system_clock::time_point time) {
    return toUDEString(convertTimeToString(time));
}

ordered_json describe(const CryptographyAnswer& answer) {
    ordered_json references = ordered_json::array();
    for (const CheckedReference& one : answer.references)
        references.push_back({{"uri", one.uri},
                              {"digest", one.digest},
                              {"holds", !one.wrong},
                              {"reason", one.wrong ? one.wrong->text : std::string()}});
    ordered_json reasons = ordered_json::array();
    for (const Reason& reason : answer.reasons)
        reasons.push_back(reason.text);
    return {{"answer", nameOf(answer.status)},
            {"reasons", reasons},
            {"referenceCount", answer.referenceCount},
            {"references", references}};
}

ordered_json describe(const std::vector<Unsigned>& all) {
    ordered_json list = ordered_json::array();
    for (std::size_t i = 0; i < std::min(all.size(), LISTED); ++i)
        list.push_back({{"kind", nameOf(all[i].kind)},
                        {"place", all[i].place},
                        {"id", orNull(all[i].id)},
                        {"type", orNull(all[i].type)},
                        {"text", all[i].text}});
    return list;
}

ordered_json describe(const CoverageAnswer& answer) {
    return {{"answer", nameOf(answer)},
            {"signedParts", answer.signedParts},
            {"signedRelationships", answer.signedRelationships},
            {"externalTargets", answer.externalTargets},
            {"unsignedCount", answer.gapCount},
            {"unsigned", describe(answer.gaps)},
            {"byCustom", describe(answer.byCustom)}};
}

ordered_json describe(const TrustAnswer& answer) {
    return {{"answer", nameOf(answer.status)},
            {"reason", answer.reason},
            {"time", answer.time ? ordered_json(textOf(*answer.time)) : ordered_json()},
            {"timeFrom", nameOf(answer.timeFrom)},
            {"timeStampFailure", answer.timeStampFailure}};
}

std::string placeOf(const Unsigned& one) {
    return one.id.empty() ? one.place : one.place + "#" + one.id;
}

ordered_json weaknessesOf(const CryptographyAnswer& answer) {
    ordered_json all = ordered_json::array();
    for (const Reason& reason : answer.reasons)
        if (reason.code == Reason::Code::WeakAlgorithm)
            all.push_back(reason.text);
    return all;
}

void addSigner(ordered_json& row, const bedrock::certificates::X509Certificate& signer, bool hasKey) {
    if (!signer.empty()) {
        row["signer"] = signer.getSubject();
        row["fingerprint"] = signer.getSHA256Fingerprint();
    } else if (hasKey) {
        row["signer"] = "key";
    }
}

ordered_json describe(const VerifiedSignature& signature) {
    const std::vector<std::string> reasons = reasonsOf(signature);
    ordered_json row{{"name", signature.name},
                     {"part", signature.part},
                     {"time", orNull(signature.claimedTime)},
                     {"digest", signature.cryptography.method},
                     {"keySize", signature.cryptography.keyBits},
                     {"signer", nullptr},
                     {"fingerprint", nullptr},
                     {"status", std::string(nameOf(signature.cryptography.status)) + ", " +
                                    nameOf(signature.coverage) + ", " + nameOf(signature.trust.status)},
                     {"code", nullptr},
                     {"holds", signature.isYes},
                     {"reason", reasons.empty() ? std::string() : reasons.front()},
                     {"weak", weaknessesOf(signature.cryptography)},
                     {"restsOnClaimedTime", false},
                     {"profile", "standard"},
                     {"cryptography", describe(signature.cryptography)},
                     {"coverage", describe(signature.coverage)},
                     {"trust", describe(signature.trust)},
                     {"yes", signature.isYes}};
    addSigner(row, signature.trust.signer, signature.trust.evidence == TrustAnswer::Evidence::PublicKey);
    return row;
}

ordered_json describe(const JudgedSignature& judged) {
    const auto params = judged.signature.getSignatureParams();
    ordered_json row{{"name", toUDEString(judged.signature.getName())},
                     {"time", orNull(toUDEString(convertTimeToString(judged.claimedTime)))},
                     {"digest", nameOf(params.getDigestMethod())},
                     {"keySize", nullptr},
                     {"signer", nullptr},
                     {"fingerprint", nullptr},
                     {"status", judged.status},
                     {"code", judged.code.value()},
                     {"holds", judged.holds},
                     {"reason", judged.reason},
                     {"weak", judged.weaknesses},
                     {"restsOnClaimedTime", judged.restsOnClaimedTime},
                     {"profile", "opcmodel"}};
    if (params.getSignatureMethod() != model::SignatureMethod::NoKey)
        row["keySize"] = model::signatureMethodToKeySize(params.getSignatureMethod());
    addSigner(row, judged.signer, judged.evidence == model::SignerEvidence::PublicKey);
    return row;
}

} // namespace

std::vector<std::string> reasonsOf(const VerifiedSignature& signature) {
    std::vector<std::string> all;
    for (const Reason& reason : signature.cryptography.reasons)
        all.push_back(effectOf(reason) + reason.text);
    for (const CheckedReference& one : signature.cryptography.references)
        if (one.wrong)
            all.push_back("broken: " + one.uri.substr(0, one.uri.find('?')) + ": " + one.wrong->text);
    if (signature.cryptography.status == CryptographyAnswer::Status::Broken)
        return all;
    for (const Unsigned& gap : signature.coverage.gaps)
        all.push_back("partial: " + placeOf(gap) + ": " + gap.text);
    if (signature.coverage.signedParts == 0)
        all.emplace_back("partial: it signs no part of the content");
    if (!signature.trust.reason.empty())
        all.push_back(std::string(nameOf(signature.trust.status)) + ": " + signature.trust.reason);
    return all;
}

ordered_json describe(const ScannedSignatures& signatures) {
    ordered_json rows = ordered_json::array(), reasons = ordered_json::array();
    for (const JudgedSignature& judged : signatures.own)
        rows.push_back(describe(judged));
    for (const model::VerdictReason& reason : signatures.reasons)
        reasons.push_back({{"signature", orNull(toUDEString(reason.signature))}, {"text", reason.text}});
    for (const VerifiedSignature& one : signatures.standard.signatures) {
        rows.push_back(describe(one));
        for (const std::string& reason : reasonsOf(one))
            reasons.push_back({{"signature", one.name}, {"text", reason}});
    }
    for (const Reason& problem : signatures.standard.problems)
        reasons.push_back({{"signature", nullptr}, {"text", problem.place + ": " + problem.text}});
    return {{"state", nameOf(signatures.state)},
            {"yes", signatures.isYes()},
            {"signatures", rows},
            {"reasons", reasons}};
}

} // namespace opc::scanning
