#include "checks/signatures/SignedContent.hpp"

#include <algorithm>

namespace opc::inspection {

SignedContent::SignedContent(const Subject& subject, const std::vector<FoundSignature>& signatures)
    : signaturesExist(!signatures.empty()) {
    for (const FoundSignature& signature : signatures)
        for (const SignatureReference& reference : signature.document.manifest)
            add(subject, reference);
}

bool SignedContent::covers(const RelationshipsView& source, const RelationshipView& relationship) const {
    const auto found = relationships.find(source.part);
    return found != relationships.end() &&
           (found->second.all || found->second.ids.count(relationship.id) != 0 ||
            found->second.types.count(relationship.type) != 0);
}

void SignedContent::add(const Subject& subject, const SignatureReference& reference) {
    const PartView* const part = subject.findPart(partNameOf(reference));
    if (part == nullptr)
        return;
    parts.insert(part);
    if (!part->isRelationships())
        return;
    Signed& covered = relationships[part];
    bool selects = false;
    for (const SignatureTransform& transform : reference.transforms) {
        selects = selects || transform.isOfRelationships();
        covered.ids.insert(transform.sourceIds.begin(), transform.sourceIds.end());
        covered.types.insert(transform.sourceTypes.begin(), transform.sourceTypes.end());
    }
    covered.all = covered.all || !selects;
}

} // namespace opc::inspection
