#include <opc/model/SignatureCoverage.hpp>

#include "signatures/DigitalSignatureData.hpp"
#include "signatures/SignatureLayout.hpp"
#include "signatures/SignatureVocabulary.hpp"

#include <opc/model/DigitalSignature.hpp>
#include <opc/model/DigitalSignatureManager.hpp>

#include <algorithm>

namespace opc::model {

namespace {

/// Whether the signature value protects the package object: `SignedInfo` holds its digest.
bool digestsPackageObject(const SignatureContent& content) {
    return std::any_of(content.signedInfoReferences.begin(), content.signedInfoReferences.end(),
                       [](const Reference& reference) {
                           return isSameDocumentReference(reference.referenceURI) &&
                                  reference.referenceURI.getFragment() == vocabulary::PACKAGE_OBJECT_ID;
                       });
}

} // namespace

SignatureCoverage::SignatureCoverage(const DigitalSignatureManager& manager,
                                     const DigitalSignature& signature) {
    if (manager.isPackageCountersigned())
        exceptedID = getSignatureRelationshipID(COUNTERSIGNATURE_ID);
    const SignatureContent& content = signature.getImpl()->m_content;
    if (!digestsPackageObject(content))
        return;
    for (std::size_t i = 0; i < content.digestedManifestReferences; ++i) {
        const Reference& reference = content.manifestReferences.at(i);
        const PartName name(reference.referenceURI.getPath());
        for (const std::u16string& id : reference.relationshipReferences)
            relationshipIDs.emplace(name, id);
        for (const std::u16string& type : reference.relationshipGroupReferences)
            relationshipTypes.emplace(name, type);
        // What names relationships is digested as relationships, whatever part it names.
        if (reference.relationshipReferences.empty() && reference.relationshipGroupReferences.empty())
            parts.insert(name);
    }
}

bool SignatureCoverage::covers(const PartName& name) const {
    return !name.isRelationshipName() && parts.count(name) != 0;
}

bool SignatureCoverage::covers(const Relationship& relationship) const {
    const std::u16string id = relationship.getID();
    if (!exceptedID.empty() && id == exceptedID)
        return false;
    const PartName source(PartName(relationship.getSourceURI()).getRelationshipPartName());
    return relationshipIDs.count({source, id}) != 0 ||
           relationshipTypes.count({source, relationship.getType()}) != 0;
}

} // namespace opc::model
