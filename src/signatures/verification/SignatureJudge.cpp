#include "signatures/verification/SignatureJudge.hpp"

#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/coverage/SignedEntities.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "signatures/signature/SignatureWork.hpp"
#include "signatures/verification/ReferenceCheck.hpp"
#include "signatures/verification/SignerCheck.hpp"
#include "signatures/verification/VerdictTexts.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <algorithm>
#include <utility>

namespace opc::model {

namespace {

using bedrock::codesigning_verifier::ErrorCode;
using bedrock::codesigning_verifier::ErrorMap;

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

bool hasUnread(const Package& package, const PartName& relationshipsPart) {
    const std::u16string source = relationshipsPart.getSourcePartName();
    if (source == u"/")
        return package.hasUnreadRelationships();
    return package.hasPart(PartName(source)) && package.getPart(PartName(source)).hasUnreadRelationships();
}

/// If only relationships differ, ignored elements may be the reason: for a program that reads them, the signature may
/// hold.
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

SignatureJudge::SignatureJudge(const Package& package, const SignaturePolicy& policy, std::uint64_t work)
    : package(package), policy(policy), work(work), digesters(package), selectable(findOriginURI(package)) {
}

JudgedSignature SignatureJudge::judge(const DigitalSignature& signature) {
    JudgedSignature judged(signature);
    try {
        check(judged);
        judged.isChecked = true;
        judged.holds = judged.code == ErrorMap<0>();
        judged.status = verdict::inWords(judged.code.value());
    } catch (const InvalidSignature& e) {
        refuse(judged, e.getErrorCode(), verdict::describe(e));
    } catch (const Exception& e) {
        refuse(judged, ErrorMap<-1>(), verdict::describe(e));
    }
    if (!judged.isChecked)
        judged.status = "can't be checked";
    return judged;
}

void SignatureJudge::check(JudgedSignature& judged) {
    if (work > MAXIMUM_WORK)
        throw InvalidSignature(TOO_MUCH_WORK, ErrorMap<102>());
    const DigitalSignatureData& data = DigitalSignatureData::of(judged.signature);
    SignerFinding signer = SignerCheck(policy).check(data);
    const DigitalSignatureVerificationStatus status = signer.status;
    judged.weaknesses = findWeaknesses(data);
    if (!status.isProperlyCodesigned() && !status.isErrorFromCertificateChain())
        return refuse(judged, status.getErrorCode(), "it wasn't made by that key, or has been changed");
    // The package may have changed since it was loaded or signed. Its present state counts.
    const SignedEntities current = findSignedEntities(package, data.m_content, selectable);
    const auto differences = findDifferences(data, *current.relationships, digesters);
    // The objects of the signature contain the time and everything else that it says.
    const std::string whySignerIsRefused = signer.reason;
    if (std::none_of(differences.begin(), differences.end(), isOfObject))
        takeOver(std::move(signer), judged);
    throwIfUnreadMayDiffer(package, differences);
    if (!differences.empty())
        return refuse(judged, ErrorMap<101>(), verdict::describeDifferences(differences));
    if (!status.isProperlyCodesigned())
        return refuse(judged, status.getErrorCode(), whySignerIsRefused);
    if (!judged.weaknesses.empty() && !policy.isAcceptingWeak())
        return refuse(judged, ErrorMap<11>(), join(judged.weaknesses));
    judged.code = ErrorMap<0>();
}

} // namespace opc::model
