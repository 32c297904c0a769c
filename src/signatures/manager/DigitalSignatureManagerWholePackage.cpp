#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/manager/DigitalSignatureManagerImpl.hpp"

#include <bedrock/certificates/PKCS12Certificate.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>

#include <set>

/// @file
/// Signatures over everything: the whole package, or all signatures of it.

namespace opc::model {

namespace {

/// One selector for each relationship, by its type: equal ones aren't joined.
Selection selectAll(const Package& package, const DataManager& manager) {
    std::set<PartName> managedNames; // letter case doesn't count
    for (const std::u16string& name : manager.getManagedPartNames())
        managedNames.emplace(name);
    const auto types = manager.getManagedRelationshipTypes();
    const std::set<std::u16string> managedTypes(types.begin(), types.end());
    Selection all;
    const auto select = [&all](const Relationship& relationship) {
        all.selectors.emplace_back(relationship.getSourceURI(), RelationshipSelectorType::SourceType,
                                   relationship.getType());
    };
    for (const Part& part : package.getParts(ExcludeMode::ExcludeNone)) {
        if (managedNames.count(part.getName()) != 0)
            continue;
        all.parts.push_back(part.getName());
        for (const Relationship& relationship : part.getRelationships(ExcludeMode::ExcludeNone))
            select(relationship);
    }
    for (const Relationship& relationship : package.getRelationships(ExcludeMode::ExcludeNone))
        if (managedTypes.count(relationship.getType()) == 0)
            select(relationship);
    return all;
}

} // namespace

DigitalSignature DigitalSignatureManager::signPackage(const Bytes& privateKey,
                                                      const SignatureParams& params) {
    const Selection all = selectAll(loaded().package, *this);
    return sign(all.parts, all.selectors, privateKey, params);
}

DigitalSignature DigitalSignatureManager::signPackage(const PKCS12Certificate& bundle,
                                                      const CertificateValidationOptions& options,
                                                      const SignatureParams& params,
                                                      const TrustStore& trustStore) {
    const Selection all = selectAll(loaded().package, *this);
    return sign(all.parts, all.selectors, bundle, options, params, trustStore);
}

DigitalSignature DigitalSignatureManager::countersignAllSignatures(const Bytes& privateKey,
                                                                   const Bytes& publicKey,
                                                                   const SignatureParams& params) {
    Impl& impl = loaded();
    throwIfNoVerificationKey(publicKey);
    return impl.sign(impl.selectSignatures(), privateKey, publicKey, params);
}

DigitalSignature DigitalSignatureManager::countersignAllSignatures(const Bytes& privateKey,
                                                                   const SignatureParams& params) {
    Impl& impl = loaded();
    return impl.sign(impl.selectSignatures(), privateKey, Bytes(), params);
}

DigitalSignature DigitalSignatureManager::countersignAllSignatures(
    const Bytes& privateKey, const X509Certificate& certificate, const X509CertificateChain& chain,
    const CertificateValidationOptions& options, const SignatureParams& params,
    const TrustStore& trustStore) {
    Impl& impl = loaded();
    return impl.sign(impl.selectSignatures(), privateKey, certificate, chain, options, params, trustStore);
}

DigitalSignature DigitalSignatureManager::countersignAllSignatures(
    const PKCS12Certificate& bundle, const CertificateValidationOptions& options,
    const SignatureParams& params, const TrustStore& trustStore) {
    Impl& impl = loaded();
    return impl.sign(impl.selectSignatures(), bundle, options, params, trustStore);
}

/// The origin part, every signature part, and the relationships that lead to them.
Selection DigitalSignatureManager::Impl::selectSignatures() const {
    throwIfNotOpen();
    if (isCountersigned())
        throw CouldNotGenerateSignature(
            "Package has already been countersigned once. Please remove countersignature "
            "before countersigning again.");
    if (list.signatures.empty())
        throw CouldNotGenerateSignature("Package has no signatures present, and so cannot be countersigned.");
    try {
        const Origin origin = getOrigin();
        const URI originURI = origin.relationship.getTargetURI();
        Selection signatures;
        signatures.isForCountersignature = true;
        signatures.parts.emplace_back(originURI);
        for (const Relationship& relationship :
             origin.part.getRelationshipsByType(getSignatureRelationshipType()))
            signatures.parts.emplace_back(relationship.getTargetURI());
        signatures.selectors.emplace_back(PackageHelper::getPackageRootURI(),
                                          RelationshipSelectorType::SourceType, getOriginRelationshipType());
        signatures.selectors.emplace_back(originURI, RelationshipSelectorType::SourceType,
                                          getSignatureRelationshipType());
        return signatures;
    } catch (const Exception& e) {
        throw translated<CouldNotGenerateSignature>(e, e.what());
    }
}

} // namespace opc::model
