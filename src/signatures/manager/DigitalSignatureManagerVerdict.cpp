#include "signatures/manager/DigitalSignatureManagerImpl.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "signatures/verification/SignatureJudge.hpp"
#include "signatures/verification/VerdictTexts.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <set>

/// @file
/// The verdict: everything that a gate asks about the signatures of a package, in one call.

namespace opc::model {

using Kind = VerdictReason::Kind;

SignatureVerdict DigitalSignatureManager::judge(const SignaturePolicy& policy) {
    m_impl->throwIfNotOpen();
    SignatureVerdict verdict;
    try {
        loaded();
    } catch (const InvalidSignature& e) {
        verdict.reasons.push_back({Kind::Unreadable, {}, e.getErrorCode(), verdict::describe(e)});
        return verdict;
    }
    m_impl->judge(m_impl->list.signatures, policy, verdict);
    if (hasForeignSignatures())
        verdict.addReason(Kind::ForeignForm, "the package has signatures in a form that isn't read: they "
                                             "can't be checked");
    else if (m_impl->list.signatures.empty())
        verdict.addReason(Kind::NoSignatures, "the package has no signatures");
    return verdict;
}

SignatureVerdict DigitalSignatureManager::judge(const DigitalSignature& signature,
                                                const SignaturePolicy& policy) {
    m_impl->throwIfNotOpen();
    SignatureVerdict verdict;
    loaded().judge({signature}, policy, verdict);
    return verdict;
}

void DigitalSignatureManager::Impl::judge(const std::vector<DigitalSignature>& signatures,
                                          const SignaturePolicy& policy, SignatureVerdict& verdict) const {
    SignatureJudge judge(package, policy, list.work);
    std::set<const DigitalSignatureData*> judged;
    std::vector<DigitalSignature> holding;
    for (const DigitalSignature& signature : signatures) {
        if (!judged.insert(&DigitalSignatureData::of(signature)).second)
            continue;
        verdict.addSignature(judge.judge(signature));
        if (verdict.getSignatures().back().holds)
            holding.push_back(signature);
    }
    verdict.coverage = PackageCoverage(package, holding, findOriginOfSignatures());
    verdict.refuseIgnored(policy.isRequiringFull());
    if (policy.isRequiringFull())
        verdict.requireFullCoverage();
}

PackageCoverage DigitalSignatureManager::computeCoverage(const std::vector<DigitalSignature>& by) const {
    return PackageCoverage(m_impl->package, by, loaded().findOriginOfSignatures());
}

} // namespace opc::model
