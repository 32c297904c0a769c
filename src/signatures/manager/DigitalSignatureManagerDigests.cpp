#include <opc/model/DigitalSignatureManager.hpp>

#include "signatures/algorithms/CryptoErrors.hpp"
#include "signatures/coverage/SelectableRelationships.hpp"
#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/digests/PartDigester.hpp"
#include "signatures/manager/SignatureWork.hpp"
#include "signatures/signature/DataToSign.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>

#include <algorithm>
#include <set>
#include <utility>

/// @file
/// What a signature covers of the package: the digests of parts, and the relationships that selectors choose.

namespace opc::model {

namespace {

/// @return null if there are none
/// @throws RelationshipNotFound
SignedRelationships::Group select(const RelationshipSource& source, const std::u16string& name,
                                  const RelationshipSelector& selector, SelectableRelationships& selectable) {
    return selector.getSelectorType() == RelationshipSelectorType::SourceId
               ? selectable.byID(source, name, selector.getSelectionCriteria())
               : selectable.byType(source, name, selector.getSelectionCriteria());
}

/// A signature that names a type of which there is none can't be read again.
void throwIfNothingMatched(const RelationshipSelector* selector, bool isAlone) {
    if (selector == nullptr)
        return;
    if (isAlone)
        throw RelationshipNotFound(
            "No relationships in the package matched the provided relationship selectors.");
    throw RelationshipNotFound("No relationship of " + toUDEString(selector->getSourceURI().toString()) +
                               " has the type " + toUDEString(selector->getSelectionCriteria()) + ".");
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
        throwIfTooMuchWork(data, params);
        return data;
    });
}

/// What an earlier signature has selected as well is shared with it.
std::shared_ptr<const SignedRelationships>
DigitalSignatureManager::selectRelationships(const std::vector<RelationshipSelector>& selectors) const {
    const auto selected = std::make_shared<SignedRelationships>();
    SelectableRelationships selectable(findOriginURI(getPackage()));
    const RelationshipSelector* unmatched = nullptr; // the first one
    for (const RelationshipSelector& selector : selectors) {
        const URI uri = selector.getSourceURI();
        SignedRelationships::Group group;
        if (uri == PackageHelper::getPackageRootURI()) {
            group = select(getPackage(), u"/", selector, selectable);
        } else {
            const Part part = getPackage().getPart(PartName(uri));
            group = select(part, part.getName().toString(), selector, selectable);
        }
        if (group)
            selected->add(group);
        else if (unmatched == nullptr)
            unmatched = &selector;
    }
    throwIfNothingMatched(unmatched, selected->empty());
    for (const DigitalSignature& signature : m_signatures)
        if (*signature.getImpl()->m_signedRelationships == *selected)
            return signature.getImpl()->m_signedRelationships;
    return selected;
}

/// What it takes to digest the relationships of all signatures: what they share is digested once for each method.
std::uint64_t DigitalSignatureManager::measureWork() const {
    std::set<std::pair<const SignedRelationships*, DigestMethod>> different;
    std::uint64_t work = 0;
    for (const DigitalSignature& signature : m_signatures) {
        const DigitalSignatureData& data = *signature.getImpl();
        const SignedRelationships* const relationships = data.m_signedRelationships.get();
        if (different.emplace(relationships, data.m_signatureParams.getDigestMethod()).second)
            work = std::min(work + relationships->work(), MAXIMUM_WORK + 1);
    }
    return work;
}

/// Refuses to sign what couldn't be verified.
void DigitalSignatureManager::throwIfTooMuchWork(const DataToSign& data,
                                                 const SignatureParams& params) const {
    const auto isLike = [&](const DigitalSignature& signature) {
        return signature.getImpl()->m_signedRelationships == data.relationships &&
               signature.getSignatureParams().getDigestMethod() == params.getDigestMethod();
    };
    const bool isDigested = std::any_of(m_signatures.begin(), m_signatures.end(), isLike);
    if (measureWork() + (isDigested ? 0 : data.relationships->work()) > MAXIMUM_WORK)
        throw Exception(TOO_MUCH_WORK);
}

} // namespace opc::model
