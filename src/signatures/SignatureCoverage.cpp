#include <opc/model/SignatureCoverage.hpp>

#include "signatures/DigitalSignatureData.hpp"
#include "signatures/SignatureLayout.hpp"

#include <opc/model/DigitalSignature.hpp>
#include <opc/model/DigitalSignatureManager.hpp>

namespace opc::model {

SignatureCoverage::SignatureCoverage(const DigitalSignatureManager& manager,
                                     const DigitalSignature& signature)
    : SignatureCoverage(manager) {
    add(signature);
}

SignatureCoverage::SignatureCoverage(const DigitalSignatureManager& manager) {
    if (manager.isPackageSigned())
        originURI = manager.findOriginURI();
}

void SignatureCoverage::add(const DigitalSignature& signature) {
    for (const Reference& reference : signature.getImpl()->m_content.manifestReferences) {
        const PartName name(reference.referenceURI.getPath());
        if (!reference.selectsRelationships()) {
            parts[name].insert(reference.referenceURI.getQuery());
            continue;
        }
        Selected& selected = relationships[name];
        selected.ids.insert(reference.relationshipReferences.begin(), reference.relationshipReferences.end());
        selected.types.insert(reference.relationshipGroupReferences.begin(),
                              reference.relationshipGroupReferences.end());
    }
}

bool SignatureCoverage::covers(const PartName& name) const {
    return !name.isRelationshipName() && parts.count(name) != 0;
}

bool SignatureCoverage::covers(const Relationship& relationship) const {
    return covers(relationship, findSelected(relationship.getSourceURI()));
}

const SignatureCoverage::Selected* SignatureCoverage::findSelected(const URI& source) const {
    const auto found = relationships.find(PartName(PartName(source).getRelationshipPartName()));
    return found == relationships.end() ? nullptr : &found->second;
}

bool SignatureCoverage::covers(const Relationship& relationship, const Selected* selected) const {
    if (selected == nullptr || (originURI && leadsToCountersignature(relationship, *originURI)))
        return false;
    return selected->ids.count(relationship.getID()) != 0 ||
           selected->types.count(relationship.getType()) != 0;
}

} // namespace opc::model
