#include "Reading.hpp"

#include <bedrock/codesigning_verifier/ErrorCode.hpp>
#include <opc/model/DigitalSignatureManager.hpp>

#include <algorithm>
#include <utility>

namespace opc::scanning {

namespace {

using model::VerdictReason;
using standard_signatures::CryptographyAnswer;
using standard_signatures::PackageVerification;
using standard_signatures::Reason;
using standard_signatures::VerifiedSignature;
using State = ScannedSignatures::State;

/// A signature that no relationship leads to is one, too.
bool foundSome(const PackageVerification& verification) {
    return !verification.signatures.empty() ||
           std::any_of(verification.problems.begin(), verification.problems.end(), [](const Reason& problem) {
               return problem.code == Reason::Code::NotAPackageSignature;
           });
}

State stateOf(const ScannedSignatures& all) {
    if (std::any_of(all.reasons.begin(), all.reasons.end(),
                    [](const VerdictReason& reason) { return reason.leavesOpen(); }))
        return State::Unreadable;
    if (all.own.empty() && !foundSome(all.standard))
        return State::Unsigned;
    const bool isOneBroken =
        std::any_of(
            all.reasons.begin(), all.reasons.end(),
            [](const VerdictReason& reason) { return reason.kind == VerdictReason::Kind::DoesNotHold; }) ||
        std::any_of(all.standard.signatures.begin(), all.standard.signatures.end(),
                    [](const VerifiedSignature& one) {
                        return one.cryptography.status == CryptographyAnswer::Status::Broken;
                    });
    if (isOneBroken)
        return State::Broken;
    const bool isStandardYes = all.standard.problems.empty() &&
                               std::all_of(all.standard.signatures.begin(), all.standard.signatures.end(),
                                           [](const VerifiedSignature& one) { return one.isYes; });
    return isStandardYes && all.reasons.empty() ? State::Holds : State::Unproven;
}

/// Signatures in one profile alone needn't be there in the other one.
void dropReasonsOfNone(ScannedSignatures& all) {
    if (!all.own.empty() || !foundSome(all.standard))
        return;
    all.reasons.erase(std::remove_if(all.reasons.begin(), all.reasons.end(),
                                     [](const VerdictReason& reason) { return !reason.leavesOpen(); }),
                      all.reasons.end());
}

} // namespace

void ScannedSignatures::add(const model::SignatureVerdict& verdict) {
    own = verdict.getSignatures();
    ownCoverEverything = !own.empty() && verdict.getCoverage().isFull();
    for (const VerdictReason& reason : verdict.getReasons())
        if (reason.kind != VerdictReason::Kind::ForeignForm) // these are added by themselves
            reasons.push_back(reason);
    state = stateOf(*this);
}

void ScannedSignatures::add(standard_signatures::PackageVerification verification) {
    standard = std::move(verification);
    dropReasonsOfNone(*this);
    if (own.empty() && !foundSome(standard) && reasons.empty())
        reasons.push_back({VerdictReason::Kind::NoSignatures,
                           {},
                           bedrock::codesigning_verifier::ErrorMap<0>(),
                           "the package has no signatures"});
    state = stateOf(*this);
}

ScannedSignatures readSignatures(model::DigitalSignatureManager& manager, interfaces::IPhysicalPackage& store,
                                 const ScanOptions& options) {
    ScannedSignatures all;
    all.add(manager.judge(options.ownPolicy));
    if (manager.hasForeignSignatures() || standard_signatures::hasSignatures(store))
        all.add(verify(store, options.standardPolicy));
    return all;
}

ScannedSignatures readStandardSignatures(interfaces::IPhysicalPackage& store, const ScanOptions& options) {
    ScannedSignatures all;
    all.add(verify(store, options.standardPolicy));
    return all;
}

} // namespace opc::scanning
