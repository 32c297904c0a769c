#include <opc/model/DigitalSignatureManager.hpp>

#include "signatures/CryptoErrors.hpp"
#include "signatures/DataToSign.hpp"
#include "signatures/PartDigester.hpp"
#include "signatures/RelationshipSelection.hpp"

#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>

/// @file
/// What a signature covers of the package: the digests of parts, and the relationships that selectors choose.

namespace opc::model {

namespace {

/// @throws RelationshipNotFound
void select(const RelationshipSource& source, const std::u16string& name,
            const RelationshipSelector& selector, RelationshipSelection& selection) {
    if (selector.getSelectorType() == RelationshipSelectorType::SourceId)
        selection.addByID(source, selector.getSelectionCriteria());
    else
        selection.addByType(source, name, selector.getSelectionCriteria());
}

} // namespace

std::vector<DigitalSignatureManager::Bytes>
DigitalSignatureManager::computePartDigests(const std::vector<PartName>& partNames,
                                            DigestMethod digestMethod) const {
    PartDigester digester(getPackage(), digestMethod);
    std::vector<Bytes> digests;
    digests.reserve(partNames.size());
    for (const PartName& name : partNames)
        digests.push_back(digester.digest(name));
    return digests;
}

DataToSign DigitalSignatureManager::computeDataToSign(const std::vector<PartName>& partNames,
                                                      const std::vector<RelationshipSelector>& selectors,
                                                      const SignatureParams& params) const {
    return translateSigningFailures([&] {
        DataToSign data;
        data.partNames = partNames;
        data.selectors = selectors;
        if (!partNames.empty())
            data.digests = computePartDigests(partNames, params.getDigestMethod());
        for (const PartName& name : partNames)
            data.contentTypes.push_back(getPackage().getPart(name).getContentType());
        data.relationships = selectRelationships(selectors);
        if (!selectors.empty() && data.relationships.empty())
            throw RelationshipNotFound(
                "No relationships in the package matched the provided relationship selectors.");
        return data;
    });
}

std::vector<Relationship>
DigitalSignatureManager::selectRelationships(const std::vector<RelationshipSelector>& selectors) const {
    RelationshipSelection selection;
    for (const RelationshipSelector& selector : selectors) {
        const URI uri = selector.getSourceURI();
        if (uri == PackageHelper::getPackageRootURI()) {
            select(getPackage(), u"/", selector, selection);
        } else {
            const Part part = getPackage().getPart(PartName(uri));
            select(part, part.getName().toString(), selector, selection);
        }
    }
    return selection.take();
}

} // namespace opc::model
