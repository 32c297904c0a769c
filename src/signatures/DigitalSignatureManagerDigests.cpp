#include <opc/model/DigitalSignatureManager.hpp>

#include "signatures/CryptoErrors.hpp"
#include "signatures/DataToSign.hpp"
#include "signatures/PartDigester.hpp"
#include "signatures/RelationshipsByType.hpp"

#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>

#include <optional>

/// @file
/// What a signature covers of the package: the digests of parts, and the relationships that selectors choose.

namespace opc::model {

namespace {

/// Selects relationships of one source.
class SelectionSource {
public:
    /// @throws InvalidPartName, PartNotFound
    SelectionSource(const Package& containing, const URI& sourceURI) : package(containing), uri(sourceURI) {
        if (uri != PackageHelper::getPackageRootURI())
            part.emplace(package.getPart(PartName(uri)));
    }

    bool isAt(const URI& sourceURI) const { return uri == sourceURI; }

    /// @throws RelationshipNotFound
    void select(const RelationshipSelector& selector, std::vector<Relationship>& selected) {
        const std::u16string criteria = selector.getSelectionCriteria();
        const RelationshipSource& source = part ? static_cast<const RelationshipSource&>(*part) : package;
        if (selector.getSelectorType() == RelationshipSelectorType::SourceId) {
            appendSelected({source.getRelationshipByID(criteria)}, selected);
            return;
        }
        if (!byType)
            byType.emplace(source);
        appendSelected(byType->get(criteria), selected);
    }

private:
    const Package& package;
    URI uri;
    std::optional<Part> part;
    std::optional<RelationshipsByType> byType;
};

} // namespace

std::vector<DigitalSignatureManager::Bytes>
DigitalSignatureManager::computePartDigests(const std::vector<PartName>& partNames,
                                            DigestMethod digestMethod) const {
    const PartDigester digester(getPackage(), digestMethod);
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
    std::vector<Relationship> selected;
    std::optional<SelectionSource> source; // the selectors of one mostly stand together
    for (const RelationshipSelector& selector : selectors) {
        const URI uri = selector.getSourceURI();
        if (!source || !source->isAt(uri))
            source.emplace(getPackage(), uri);
        source->select(selector, selected);
    }
    return selected;
}

} // namespace opc::model
