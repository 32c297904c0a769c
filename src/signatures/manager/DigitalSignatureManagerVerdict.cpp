#include <opc/model/DigitalSignatureManager.hpp>

#include "signatures/coverage/SelectableRelationships.hpp"
#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/digests/PartDigester.hpp"
#include "signatures/manager/SignatureWork.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "signatures/verification/SignerCheck.hpp"
#include "signatures/verification/VerdictTexts.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <algorithm>
#include <set>

/// @file
/// The verdict: what a gate asks of the signatures of a package, in one call.

namespace opc::model {

namespace {

using bedrock::codesigning_verifier::ErrorCode;
using bedrock::codesigning_verifier::ErrorMap;
using Kind = VerdictReason::Kind;

void refuse(JudgedSignature& judged, const ErrorCode& code, std::string reason) {
    judged.code = code;
    judged.reason = std::move(reason);
}

std::string join(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : ", ") + text;
    return joined;
}

void takeOver(SignerFinding&& signer, JudgedSignature& judged) {
    judged.evidence = signer.evidence;
    judged.signer = std::move(signer.certificate);
    judged.restsOnClaimedTime = signer.restsOnClaimedTime;
    judged.claimedTime = judged.signature.getSignedTime();
    judged.weaknesses.insert(judged.weaknesses.end(), signer.weaknesses.begin(), signer.weaknesses.end());
}

std::string withDetails(const Exception& failure) {
    return *failure.details() == '\0' ? failure.what()
                                      : std::string(failure.what()) + "; " + failure.details();
}

bool hasUnread(const Package& package, const PartName& relationshipsPart) {
    const std::u16string source = relationshipsPart.getSourcePartName();
    if (source == u"/")
        return package.hasUnreadRelationships();
    return package.hasPart(PartName(source)) && package.getPart(PartName(source)).hasUnreadRelationships();
}

/// Elements that weren't read may be what differs, if relationships alone do: who reads them may find that the
/// signature holds.
void throwIfUnreadMayDiffer(const Package& package, const std::vector<const Reference*>& differences) {
    const auto isOther = [](const Reference* reference) { return !reference->selectsRelationships(); };
    if (std::any_of(differences.begin(), differences.end(), isOther))
        return;
    for (const Reference* reference : differences) {
        const std::u16string part(reference->referenceURI.getPath());
        if (hasUnread(package, PartName(part)))
            throw InvalidSignature("signed relationships may be among what wasn't read in " +
                                       toUDEString(part),
                                   ErrorMap<104>());
    }
}

bool isOfObject(const Reference* reference) {
    return isSameDocumentReference(reference->referenceURI);
}

} // namespace

SignatureVerdict DigitalSignatureManager::judge(const SignaturePolicy& policy) {
    throwIfPackageNotOpen();
    SignatureVerdict verdict;
    try {
        ensureLoaded();
    } catch (const InvalidSignature& e) {
        verdict.reasons.push_back({Kind::Unreadable, {}, e.getErrorCode(), withDetails(e)});
        return verdict;
    }
    judgeAll(m_signatures, policy, verdict);
    if (hasForeignSignatures())
        verdict.addReason(Kind::ForeignForm, "the package has signatures in a form that isn't read: they "
                                             "can't be checked");
    else if (m_signatures.empty())
        verdict.addReason(Kind::NoSignatures, "the package has no signatures");
    return verdict;
}

SignatureVerdict DigitalSignatureManager::judge(const DigitalSignature& signature,
                                                const SignaturePolicy& policy) {
    throwIfPackageNotOpen();
    ensureLoaded();
    SignatureVerdict verdict;
    judgeAll({signature}, policy, verdict);
    return verdict;
}

void DigitalSignatureManager::judgeAll(const Signatures& signatures, const SignaturePolicy& policy,
                                       SignatureVerdict& verdict) const {
    PartDigesters digesters(getPackage());
    SelectableRelationships selectable(findOriginURI(getPackage()));
    std::set<const DigitalSignatureData*> judged;
    Signatures holding;
    for (const DigitalSignature& signature : signatures) {
        if (!judged.insert(signature.getImpl().get()).second)
            continue;
        verdict.addSignature(judgeOne(signature, policy, digesters, selectable));
        if (verdict.getSignatures().back().holds)
            holding.push_back(signature);
    }
    verdict.coverage = computeCoverage(holding);
    verdict.refuseIgnored(policy.isRequiringFull());
    if (policy.isRequiringFull())
        verdict.requireFullCoverage();
}

JudgedSignature DigitalSignatureManager::judgeOne(const DigitalSignature& signature,
                                                  const SignaturePolicy& policy, PartDigesters& digesters,
                                                  SelectableRelationships& selectable) const {
    JudgedSignature judged(signature);
    try {
        check(policy, digesters, selectable, judged);
        judged.isChecked = true;
        judged.holds = judged.code == ErrorMap<0>();
        judged.status = verdict::inWords(judged.code.value());
    } catch (const InvalidSignature& e) {
        refuse(judged, e.getErrorCode(), withDetails(e));
    } catch (const Exception& e) {
        refuse(judged, ErrorMap<-1>(), withDetails(e));
    }
    if (!judged.isChecked)
        judged.status = "can't be checked";
    return judged;
}

void DigitalSignatureManager::check(const SignaturePolicy& policy, PartDigesters& digesters,
                                    SelectableRelationships& selectable, JudgedSignature& judged) const {
    if (m_work > MAXIMUM_WORK)
        throw InvalidSignature(TOO_MUCH_WORK, ErrorMap<102>());
    const DigitalSignatureData& data = *judged.signature.getImpl();
    SignerFinding signer = SignerCheck(policy).check(data);
    const DigitalSignatureVerificationStatus status = signer.status;
    judged.weaknesses = findWeaknesses(data);
    if (!status.isProperlyCodesigned() && !status.isErrorFromCertificateChain())
        return refuse(judged, status.getErrorCode(), "it wasn't made by that key, or has been changed");
    // The package may have been changed since it was loaded or signed, and is judged as it stands.
    DigitalSignatureData current(data);
    current.m_signedPartNames.clear();
    fillUpSignedEntities(current, selectable);
    const auto differences = findDifferences(current, digesters);
    // The time and all else that the signature says stand in its objects.
    const std::string whySignerIsRefused = signer.reason;
    if (std::none_of(differences.begin(), differences.end(), isOfObject))
        takeOver(std::move(signer), judged);
    throwIfUnreadMayDiffer(getPackage(), differences);
    if (!differences.empty())
        return refuse(judged, ErrorMap<101>(), verdict::describeDifferences(differences));
    if (!status.isProperlyCodesigned())
        return refuse(judged, status.getErrorCode(), whySignerIsRefused);
    if (!judged.weaknesses.empty() && !policy.isAcceptingWeak())
        return refuse(judged, ErrorMap<11>(), join(judged.weaknesses));
    judged.code = ErrorMap<0>();
}

PackageCoverage DigitalSignatureManager::computeCoverage(const std::vector<DigitalSignature>& by) const {
    ensureLoaded();
    return PackageCoverage(getPackage(), by, findOriginOfSignatures());
}

bool DigitalSignatureManager::hasForeignSignatures() const {
    return !getPackage().getRelationshipsByType(getForeignOriginRelationshipType()).empty();
}

} // namespace opc::model
