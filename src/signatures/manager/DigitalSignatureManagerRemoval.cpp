#include "package/PackageImpl.hpp"
#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/manager/DigitalSignatureManagerImpl.hpp"

#include <opc/model/Errors.hpp>

#include <algorithm>

/// @file
/// Removal of signatures. The last one also removes the origin part, unless signatures in another form use it.

namespace opc::model {

namespace {

/// Whether signatures in another form use the origin part too.
bool isShared(const Part& origin, const Package& package) {
    const auto leadsThere = [uri = origin.getName().getURI()](const Relationship& relationship) {
        return relationship.getTargetMode() == TargetMode::Internal && relationship.getTargetURI() == uri;
    };
    const auto others = package.getRelationshipsByType(getForeignOriginRelationshipType());
    return origin.hasUnreadRelationships() || !origin.getRelationships().empty() ||
           std::any_of(others.begin(), others.end(), leadsThere);
}

} // namespace

void DigitalSignatureManager::removeSignature(const std::u16string& name) {
    m_impl->throwIfNotOpenForModify();
    Impl& impl = loaded();
    const auto entry = impl.find(name);
    impl.deletePart(getSignaturePartName(name));
    impl.list.signatures.erase(entry);
}

void DigitalSignatureManager::removeSignature(const DigitalSignature& signature) {
    loaded();
    removeSignature(signature.getName());
}

void DigitalSignatureManager::removeAllSignatures() {
    m_impl->throwIfNotOpenForModify();
    Impl& impl = loaded();
    for (const DigitalSignature& signature : impl.list.signatures)
        impl.deletePart(getSignaturePartName(signature.getName()));
    impl.list.signatures.clear();
    impl.list.nextNumber = 1;
}

void DigitalSignatureManager::removeCountersignature() {
    m_impl->throwIfNotOpenForModify();
    if (loaded().isCountersigned())
        removeSignature(getSignatureName(COUNTERSIGNATURE_ID));
}

void DigitalSignatureManager::Impl::deletePart(const PartName& partName) {
    throwIfNotSignaturePart(partName);
    const std::string ADVICE =
        ". Please try closing and reopening the package before trying to remove signature.";
    try {
        auto [origin, toOrigin] = getOrigin();
        const auto signatures = origin.getRelationshipsByType(getSignatureRelationshipType());
        package.state().contentTypeSource->throwIfFixed();
        if (signatures.size() == 1) // also removes the origin part
            package.throwIfRelationshipsFixed();
        for (const Relationship& relationship : signatures) {
            if (relationship.getTargetURI() != partName.getURI())
                continue;
            origin.deleteRelationship(relationship.getID());
            break;
        }
        package.deletePart(partName);
        if (origin.getRelationshipsByType(getSignatureRelationshipType()).empty()) {
            if (!isShared(origin, package))
                package.deletePart(PartName(toOrigin.getTargetURI()));
            package.deleteRelationship(toOrigin.getID());
        }
    } catch (const PartNotFound& e) {
        throw CouldNotRemoveSignature("Unable to delete part" + ADVICE + e.what());
    } catch (const RelationshipNotFound& e) {
        throw CouldNotRemoveSignature("Unable to delete relationship" + ADVICE + e.what());
    } catch (const Exception& e) {
        throw translated<CouldNotRemoveSignature>(e, e.what());
    }
}

} // namespace opc::model
