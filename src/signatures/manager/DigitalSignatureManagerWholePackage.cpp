#include <opc/model/DigitalSignatureManager.hpp>

#include "signatures/coverage/SignatureLayout.hpp"

#include <bedrock/certificates/PKCS12Certificate.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>

#include <set>
#include <unordered_set>

/// @file
/// Signatures over everything: the whole package, or all signatures of it.

namespace opc::model {

namespace {

std::unordered_set<std::u16string> toSet(const std::vector<std::u16string>& texts) {
    return {texts.begin(), texts.end()};
}

} // namespace

DigitalSignature DigitalSignatureManager::signPackage(const Bytes& privateKey,
                                                      const SignatureParams& params) {
    ensureLoaded();
    const auto [parts, selectors] = getAllPartsAndRels();
    return sign(parts, selectors, privateKey, params);
}

DigitalSignature DigitalSignatureManager::signPackage(const PKCS12Certificate& bundle,
                                                      const CertificateValidationOptions& options,
                                                      const SignatureParams& params,
                                                      const TrustStore& trustStore) {
    ensureLoaded();
    const auto [parts, selectors] = getAllPartsAndRels();
    return sign(parts, selectors, bundle, options, params, trustStore);
}

/// One selector for each relationship, by its type: equal ones aren't joined.
std::pair<std::vector<PartName>, std::vector<RelationshipSelector>>
DigitalSignatureManager::getAllPartsAndRels() const {
    std::set<PartName> managedNames; // letter case doesn't count
    for (const std::u16string& name : getManagedPartNames())
        managedNames.emplace(name);
    const auto managedTypes = toSet(getManagedRelationshipTypes());
    std::vector<PartName> parts;
    std::vector<RelationshipSelector> selectors;
    const auto select = [&selectors](const Relationship& relationship) {
        selectors.emplace_back(relationship.getSourceURI(), RelationshipSelectorType::SourceType,
                               relationship.getType());
    };
    for (const Part& part : getPackage().getParts(ExcludeMode::ExcludeNone)) {
        if (managedNames.count(part.getName()) != 0)
            continue;
        parts.push_back(part.getName());
        for (const Relationship& relationship : part.getRelationships(ExcludeMode::ExcludeNone))
            select(relationship);
    }
    for (const Relationship& relationship : getPackage().getRelationships(ExcludeMode::ExcludeNone))
        if (managedTypes.count(relationship.getType()) == 0)
            select(relationship);
    return {std::move(parts), std::move(selectors)};
}

DigitalSignature DigitalSignatureManager::countersignAllSignatures(const Bytes& privateKey,
                                                                   const Bytes& publicKey,
                                                                   const SignatureParams& params) {
    ensureLoaded();
    throwIfNoVerificationKey(publicKey);
    const auto [parts, selectors] = countersignHelper();
    return signHelper(privateKey, publicKey, params, parts, selectors, true);
}

DigitalSignature DigitalSignatureManager::countersignAllSignatures(const Bytes& privateKey,
                                                                   const SignatureParams& params) {
    ensureLoaded();
    const auto [parts, selectors] = countersignHelper();
    return signHelper(privateKey, Bytes(), params, parts, selectors, true);
}

DigitalSignature DigitalSignatureManager::countersignAllSignatures(
    const Bytes& privateKey, const X509Certificate& certificate, const X509CertificateChain& chain,
    const CertificateValidationOptions& options, const SignatureParams& params,
    const TrustStore& trustStore) {
    ensureLoaded();
    const auto [parts, selectors] = countersignHelper();
    return signHelper(privateKey, certificate, chain, trustStore, options, params, parts, selectors, true);
}

DigitalSignature DigitalSignatureManager::countersignAllSignatures(
    const PKCS12Certificate& bundle, const CertificateValidationOptions& options,
    const SignatureParams& params, const TrustStore& trustStore) {
    ensureLoaded();
    const auto [parts, selectors] = countersignHelper();
    return signHelper(bundle, trustStore, options, params, parts, selectors, true);
}

/// The origin part, every signature part, and the relationships that lead to them.
std::pair<std::vector<PartName>, std::vector<RelationshipSelector>>
DigitalSignatureManager::countersignHelper() const {
    if (isPackageCountersigned())
        throw CouldNotGenerateSignature(
            "Package has already been countersigned once. Please remove countersignature "
            "before countersigning again.");
    if (!isPackageSigned())
        throw CouldNotGenerateSignature("Package has no signatures present, and so cannot be countersigned.");
    try {
        URI originURI;
        std::u16string originRelationshipID;
        const Part origin = getSignatureOriginPart(originURI, originRelationshipID);
        std::vector<PartName> parts{PartName(originURI)};
        for (const Relationship& relationship : origin.getRelationshipsByType(getSignatureRelationshipType()))
            parts.emplace_back(relationship.getTargetURI());
        std::vector<RelationshipSelector> selectors;
        selectors.emplace_back(PackageHelper::getPackageRootURI(), RelationshipSelectorType::SourceType,
                               getOriginRelationshipType());
        selectors.emplace_back(originURI, RelationshipSelectorType::SourceType,
                               getSignatureRelationshipType());
        return {std::move(parts), std::move(selectors)};
    } catch (const Exception& e) {
        throw translated<CouldNotGenerateSignature>(e, e.what());
    }
}

DigitalSignature DigitalSignatureManager::getCountersignature() {
    ensureLoaded();
    return getSignature(getSignatureName(COUNTERSIGNATURE_ID));
}

DigitalSignatureVerificationStatus DigitalSignatureManager::verifyCountersignature(const Bytes& publicKey) {
    ensureLoaded();
    throwIfPackageNotCountersigned();
    return verifySignature(getCountersignature(), publicKey);
}

DigitalSignatureVerificationStatus
DigitalSignatureManager::verifyCountersignature(const FingerprintStore& fingerprints,
                                                const CertificateValidationOptions& options,
                                                const TrustStore& trustStore) {
    ensureLoaded();
    throwIfPackageNotCountersigned();
    return verifySignature(getCountersignature(), fingerprints, options, trustStore);
}

DigitalSignatureVerificationStatus DigitalSignatureManager::verifyCountersignature(
    const X509Certificate& certificate, const FingerprintStore& fingerprints,
    const X509CertificateChain& chain, const CertificateValidationOptions& options,
    const TrustStore& trustStore) {
    ensureLoaded();
    throwIfPackageNotCountersigned();
    return verifySignature(getCountersignature(), certificate, fingerprints, chain, options, trustStore);
}

void DigitalSignatureManager::throwIfPackageNotCountersigned() const {
    if (!isPackageCountersigned())
        throw SignatureNotFound("No countersignatures found in package.");
}

} // namespace opc::model
