#include "signing/OtherSignatures.hpp"

#include "document/SignatureDocument.hpp"
#include "names/SignatureParts.hpp"
#include "reason/Refusal.hpp"

#include <opc/standard_signatures/Signing.hpp>

namespace opc::standard_signatures {

namespace {

std::vector<PartReference> readManifest(const StoredPart& signature, const PackageContents& contents) {
    try {
        return SignatureDocument::read(*contents.open(signature)).manifest;
    } catch (const Exception&) { // Refusal too
        return {};
    }
}

/// Whether it signs a relationships part as it lies in the store, or relationships by a type of signatures.
bool signsRelationshipsOfSignatures(const PartReference& reference) {
    if (!reference.selects)
        return true;
    const auto& types = reference.selects->types;
    return types.count(std::string(ORIGIN_RELATIONSHIP)) != 0 ||
           types.count(std::string(SIGNATURE_RELATIONSHIP)) != 0;
}

} // namespace

void throwIfBroken(const std::set<const StoredPart*>& changed, const std::set<const StoredPart*>& leaving,
                   PackageContents& contents, const PackageMap& map) {
    for (const StoredPart* const signature : map.signatures()) {
        if (leaving.count(signature) != 0)
            continue;
        for (const PartReference& reference : readManifest(*signature, contents))
            if (const StoredPart* const part = contents.find(reference.partName);
                part != nullptr && changed.count(part) != 0 && signsRelationshipsOfSignatures(reference))
                throw SigningRefused("The signature " + signature->name + " signs " + reference.partName +
                                     " in a way that allows no change of the signatures");
    }
}

} // namespace opc::standard_signatures
