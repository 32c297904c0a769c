#include <opc/model/DigitalSignatureManager.hpp>

#include "signatures/coverage/SignatureLayout.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <algorithm>

/// @file
/// Removal of signatures. The origin part goes with the last one, unless signatures of another form hang on it.

namespace opc::model {

namespace {

/// Whether signatures of another form hang on the origin part as well.
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
    throwIfPackageNotOpenForModify();
    ensureLoaded();
    const auto entry = findSignature(name);
    deleteSignaturePart(getSignaturePartName(name));
    m_signatures.erase(entry);
}

void DigitalSignatureManager::removeSignature(const DigitalSignature& signature) {
    ensureLoaded();
    removeSignature(signature.getName());
}

void DigitalSignatureManager::removeAllSignatures() {
    throwIfPackageNotOpenForModify();
    ensureLoaded();
    for (const DigitalSignature& signature : m_signatures)
        deleteSignaturePart(getSignaturePartName(signature.getName()));
    m_signatures.clear();
    m_nextSignatureID = 1;
}

void DigitalSignatureManager::removeCountersignature() {
    throwIfPackageNotOpenForModify();
    ensureLoaded();
    if (isPackageCountersigned())
        removeSignature(getSignatureName(COUNTERSIGNATURE_ID));
}

void DigitalSignatureManager::deleteSignaturePart(const PartName& partName) {
    throwIfNotValidSignaturePart(partName);
    const std::string ADVICE =
        ". Please try closing and reopening the package before trying to remove signature.";
    try {
        URI originURI;
        std::u16string originRelationshipID;
        Part origin = getSignatureOriginPart(originURI, originRelationshipID);
        const auto signatures = origin.getRelationshipsByType(getSignatureRelationshipType());
        getPackage().throwIfContentTypesFixed();
        if (signatures.size() == 1) // the origin part goes as well
            getPackage().throwIfRelationshipsFixed();
        for (const Relationship& relationship : signatures) {
            if (relationship.getTargetURI() != partName.getURI())
                continue;
            origin.deleteRelationship(relationship.getID());
            break;
        }
        getPackage().deletePart(partName);
        if (origin.getRelationshipsByType(getSignatureRelationshipType()).empty()) {
            if (!isShared(origin, getPackage()))
                getPackage().deletePart(PartName(originURI));
            getPackage().deleteRelationship(originRelationshipID);
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
