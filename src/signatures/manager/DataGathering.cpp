#include "signatures/manager/DataGathering.hpp"

#include "package/PartSearch.hpp"
#include "signatures/algorithms/CryptoErrors.hpp"
#include "signatures/coverage/SelectableRelationships.hpp"
#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/digests/PartDigester.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "signatures/signature/SignatureWork.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>

#include <algorithm>
#include <utility>

namespace opc::model {

namespace {

/// @return null if there are none
/// @throws RelationshipNotFound
SignedRelationships::Group select(const RelationshipSource& source, const RelationshipSelector& selector,
                                  SelectableRelationships& selectable) {
    return selector.getSelectorType() == RelationshipSelectorType::SourceId
               ? selectable.byID(source, selector.getSelectionCriteria())
               : selectable.byType(source, selector.getSelectionCriteria());
}

/// A signature that names a type without relationships couldn't be read again.
void throwIfNothingMatched(const RelationshipSelector* selector, bool isAlone) {
    if (selector == nullptr)
        return;
    if (isAlone)
        throw RelationshipNotFound(
            "No relationships in the package matched the provided relationship selectors.");
    const std::string source = toUDEString(selector->getSourceURI().toString());
    throw aboutPart(source, RelationshipNotFound("No relationship of " + source + " has the type " +
                                                 toUDEString(selector->getSelectionCriteria()) + "."));
}

/// Shares what an earlier signature has selected too.
std::shared_ptr<const SignedRelationships>
selectRelationships(const Package& package, const std::vector<RelationshipSelector>& selectors,
                    const std::vector<DigitalSignature>& existing) {
    std::vector<SignedRelationships::Group> groups;
    SelectableRelationships selectable(findOriginURI(package));
    PartSearch parts(package);
    const RelationshipSelector* unmatched = nullptr; // the first one
    for (const RelationshipSelector& selector : selectors) {
        const URI uri = selector.getSourceURI();
        auto group = uri == PackageHelper::getPackageRootURI()
                         ? select(package, selector, selectable)
                         : select(parts.get(PartName(uri)), selector, selectable);
        if (group)
            groups.push_back(std::move(group));
        else if (unmatched == nullptr)
            unmatched = &selector;
    }
    const auto selected = std::make_shared<SignedRelationships>(std::move(groups));
    throwIfNothingMatched(unmatched, selected->empty());
    for (const DigitalSignature& signature : existing)
        if (*DigitalSignatureData::of(signature).m_signedRelationships == *selected)
            return DigitalSignatureData::of(signature).m_signedRelationships;
    return selected;
}

/// Refuses to sign what couldn't be verified.
void throwIfTooMuchWork(const SignedRelationships& selected, DigestMethod method,
                        const std::vector<DigitalSignature>& existing) {
    const auto isLike = [&](const DigitalSignature& signature) {
        return DigitalSignatureData::of(signature).m_signedRelationships.get() == &selected &&
               signature.getSignatureParams().getDigestMethod() == method;
    };
    const bool isDigested = std::any_of(existing.begin(), existing.end(), isLike);
    if (measureWork(existing) + (isDigested ? 0 : selected.work()) > MAXIMUM_WORK)
        throw Exception(TOO_MUCH_WORK);
}

} // namespace

DataToSign gatherDataToSign(const Package& package, const Selection& selection, DigestMethod method,
                            const std::vector<DigitalSignature>& existing) {
    return translateSigningFailures([&] {
        DataToSign data;
        data.partNames = selection.parts;
        data.selectors = selection.selectors;
        if (!selection.parts.empty()) {
            PartDigester digester(package, method);
            data.digests.reserve(selection.parts.size());
            for (const PartName& name : selection.parts)
                data.digests.push_back(digester.digest(name));
        }
        PartSearch parts(package);
        for (const PartName& name : selection.parts)
            data.contentTypes.push_back(parts.get(name).getContentType());
        data.relationships = selectRelationships(package, selection.selectors, existing);
        throwIfTooMuchWork(*data.relationships, method, existing);
        return data;
    });
}

} // namespace opc::model
