#include <opc/model/SignatureVerdict.hpp>

#include "signatures/verification/VerdictTexts.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>

namespace opc::model {

namespace {

using Kind = VerdictReason::Kind;

Kind kindOf(const JudgedSignature& signature) {
    if (!signature.isChecked)
        return Kind::NotChecked;
    if (signature.code == bedrock::codesigning_verifier::ErrorMap<11>())
        return Kind::WeakAlgorithm;
    return verdict::isAboutSigner(signature.code.value()) ? Kind::SignerNotAccepted : Kind::DoesNotHold;
}

} // namespace

SignatureVerdict::Answer SignatureVerdict::getAnswer() const {
    const auto leavesOpen = [](const VerdictReason& reason) { return reason.leavesOpen(); };
    if (std::any_of(reasons.begin(), reasons.end(), leavesOpen))
        return Answer::CannotTell;
    return reasons.empty() ? Answer::Yes : Answer::No;
}

void SignatureVerdict::addReason(Kind kind, std::string text) {
    reasons.push_back({kind, {}, bedrock::codesigning_verifier::ErrorMap<0>(), std::move(text)});
}

void SignatureVerdict::addSignature(JudgedSignature signature) {
    if (!signature.holds) {
        const std::u16string name = signature.signature.getName();
        reasons.push_back({kindOf(signature), name, signature.code,
                           toUDEString(name) + ": " + signature.status + ": " + signature.reason});
    }
    signatures.push_back(std::move(signature));
}

void SignatureVerdict::refuseIgnored(bool isAllRefused) {
    verdict::Places ignored;
    for (const interfaces::IgnoredItem& item : coverage.getIgnoredItems())
        if (isAllRefused || coverage.unreadWhereSigned.count(item.name) != 0)
            ignored.add(verdict::describe(item));
    if (!ignored.empty())
        addReason(Kind::IgnoredItem, "ignored, but not by other programs: " + ignored.toText());
}

void SignatureVerdict::requireFullCoverage() {
    verdict::Places uncovered;
    for (const PartName& name : coverage.getUncoveredParts())
        uncovered.add(name);
    for (const Relationship& relationship : coverage.getUncoveredRelationships())
        uncovered.add(relationship);
    if (!uncovered.empty())
        addReason(Kind::NotCovered, "not covered by a signature that holds: " + uncovered.toText());
    if (coverage.getKeywordsSize() != 0)
        addReason(Kind::NotCovered, "not covered by any signature: the keywords of the core properties");
    verdict::Places changed;
    for (const ChangedContentType& change : coverage.getChangedContentTypes())
        changed.add(verdict::describe(change));
    if (!changed.empty())
        addReason(Kind::ContentTypeChanged, changed.toText());
}

} // namespace opc::model
