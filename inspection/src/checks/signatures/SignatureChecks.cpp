#include "checks/signatures/SignatureChecks.hpp"

#include "checks/Checks.hpp"

namespace opc::inspection {

Place placeIn(const PartView& part, const SignaturePlace& at) {
    Place place;
    place.part = part.name;
    place.line = at.line;
    place.column = at.column;
    return place;
}

Place placeIn(const RelationshipsView& source, const RelationshipView& relationship) {
    Place place = placeIn(*source.part, {relationship.line, relationship.column});
    place.relationship = relationship.id;
    return place;
}

void checkSignatures(const Subject& subject, Findings& findings) {
    const std::vector<FoundSignature> signatures = findSignatures(subject);
    checkSignatureParts(subject, signatures, findings);
    RelationshipIds ids(subject);
    for (const FoundSignature& signature : signatures) {
        if (!signature.document.state.failure.empty() || !signature.document.isSignature)
            continue;
        checkSignatureStructure(signature, findings);
        checkManifest(subject, ids, signature, findings);
        checkSignatureStrength(signature, findings);
    }
    checkCoverage(subject, signatures, findings);
    checkOwnSignatures(subject, signatures, findings);
}

} // namespace opc::inspection
