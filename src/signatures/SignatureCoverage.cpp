#include <opc/model/SignatureCoverage.hpp>

#include "signatures/DigitalSignatureData.hpp"
#include "signatures/SignatureLayout.hpp"

#include <opc/model/DigitalSignature.hpp>
#include <opc/model/DigitalSignatureManager.hpp>

namespace opc::model {

SignatureCoverage::SignatureCoverage(const DigitalSignatureManager& manager,
                                     const DigitalSignature& signature) {
    if (manager.isPackageSigned())
        originURI = manager.findOriginURI();
    for (const Reference& reference : signature.getImpl()->m_content.manifestReferences) {
        const PartName name(reference.referenceURI.getPath());
        for (const std::u16string& id : reference.relationshipReferences)
            relationshipIDs.emplace(name, id);
        for (const std::u16string& type : reference.relationshipGroupReferences)
            relationshipTypes.emplace(name, type);
        if (!reference.selectsRelationships())
            parts.insert(name);
    }
}

bool SignatureCoverage::covers(const PartName& name) const {
    return !name.isRelationshipName() && parts.count(name) != 0;
}

bool SignatureCoverage::covers(const Relationship& relationship) const {
    if (originURI && leadsToCountersignature(relationship, *originURI))
        return false;
    const PartName source(PartName(relationship.getSourceURI()).getRelationshipPartName());
    return relationshipIDs.count({source, relationship.getID()}) != 0 ||
           relationshipTypes.count({source, relationship.getType()}) != 0;
}

} // namespace opc::model
