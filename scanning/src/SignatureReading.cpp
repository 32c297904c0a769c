#include "Reading.hpp"

#include <bedrock/codesigning_verifier/ErrorCode.hpp>
#include <opc/model/DigitalSignatureManager.hpp>

#include <algorithm>

namespace opc::scanning {

namespace {

using model::JudgedSignature;
using model::VerdictReason;
using standard_signatures::CryptographyAnswer;
using standard_signatures::VerifiedSignature;
using State = ScannedSignatures::State;

State stateOf(const ScannedSignatures& all) {
    if (std::any_of(all.reasons.begin(), all.reasons.end(),
                    [](const VerdictReason& reason) { return reason.leavesOpen(); }))
        return State::Unreadable;
    if (all.own.empty() && all.standard.signatures.empty())
        return State::Unsigned;
    const bool allHold =
        std::all_of(all.own.begin(), all.own.end(),
                    [](const JudgedSignature& judged) { return judged.holds; }) &&
        std::none_of(all.standard.signatures.begin(), all.standard.signatures.end(),
                     [](const VerifiedSignature& one) {
                         return one.cryptography.status == CryptographyAnswer::Status::Broken;
                     });
    return allHold ? State::Holds : State::Broken;
}

void readOwn(model::DigitalSignatureManager& manager, const ScanOptions& options, ScannedSignatures& all) {
    const model::SignatureVerdict verdict = manager.judge(options.ownPolicy);
    all.own = verdict.getSignatures();
    all.ownCoverEverything = !all.own.empty() && verdict.getCoverage().isFull();
    for (const VerdictReason& reason : verdict.getReasons())
        if (reason.kind != VerdictReason::Kind::ForeignForm) // these are read here
            all.reasons.push_back(reason);
}

/// Signatures in one profile alone needn't be there in the other one.
void dropReasonsOfNone(ScannedSignatures& all) {
    if (!all.own.empty() || all.standard.signatures.empty())
        return;
    all.reasons.erase(std::remove_if(all.reasons.begin(), all.reasons.end(),
                                     [](const VerdictReason& reason) { return !reason.leavesOpen(); }),
                      all.reasons.end());
}

} // namespace

ScannedSignatures readSignatures(model::DigitalSignatureManager& manager, interfaces::IPhysicalPackage& store,
                                 const ScanOptions& options) {
    ScannedSignatures all;
    readOwn(manager, options, all);
    if (manager.hasForeignSignatures()) {
        all.standard = verify(store, options.standardPolicy);
        dropReasonsOfNone(all);
        if (all.own.empty() && all.standard.signatures.empty() && all.reasons.empty())
            all.reasons.push_back({VerdictReason::Kind::NoSignatures,
                                   {},
                                   bedrock::codesigning_verifier::ErrorMap<0>(),
                                   "the package has no signatures"});
    }
    all.state = stateOf(all);
    return all;
}

ScannedSignatures readStandardSignatures(interfaces::IPhysicalPackage& store, const ScanOptions& options) {
    ScannedSignatures all;
    all.standard = verify(store, options.standardPolicy);
    all.state = stateOf(all);
    return all;
}

} // namespace opc::scanning
