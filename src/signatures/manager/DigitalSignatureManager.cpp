#include <opc/model/DigitalSignatureManager.hpp>

#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/document/DigitalSignatureSerializer.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

/// @file
/// The frame of the manager: guards, numbering, and what it keeps for itself in the package.

namespace opc::model {

DigitalSignatureManager::DigitalSignatureManager(Package& managed)
    : DataManager(managed, false), m_serializer(std::make_unique<DigitalSignatureSerializer>()) {
}

DigitalSignatureManager::~DigitalSignatureManager() = default;

/// Every change has been written to the package when it was made.
void DigitalSignatureManager::doSave() {
}

std::vector<std::u16string> DigitalSignatureManager::doGetManagedPartNames() const {
    if (!isPackageSigned())
        return {};
    std::vector<std::u16string> names{getOriginPartURI().toString()};
    for (const DigitalSignature& signature : m_signatures)
        names.push_back(getSignaturePartName(signature.getName()).toString());
    return names;
}

std::vector<std::u16string> DigitalSignatureManager::doGetManagedRelationshipTypes() const {
    if (!isPackageSigned())
        return {};
    return {getOriginRelationshipType(), getSignatureRelationshipType()};
}

bool DigitalSignatureManager::isPackageCountersigned() const {
    throwIfPackageNotOpen();
    ensureLoaded();
    return getPackage().hasPart(getSignaturePartName(getSignatureName(COUNTERSIGNATURE_ID)));
}

Part DigitalSignatureManager::getSignatureOriginPart(URI& uri, std::u16string& relationshipID) const {
    const auto relationships = getPackage().getRelationshipsByType(getOriginRelationshipType());
    if (relationships.empty())
        throw SignatureNotFound("Internal Error: No signature origin present.");
    const Relationship& first = *relationships.begin();
    uri = first.getTargetURI();
    relationshipID = first.getID();
    return getPackage().getPart(PartName(uri));
}

/// The name of the origin part, where there are signatures.
std::optional<URI> DigitalSignatureManager::findOriginOfSignatures() const {
    return isPackageSigned() ? findOriginURI(getPackage()) : std::nullopt;
}

/// The origin part that new signatures hang on, where there is one. A package has one origin part [M6.1], so one that
/// signatures of another form hang on is theirs too.
std::optional<Part> DigitalSignatureManager::findOriginPart() const {
    if (const auto uri = findOriginURI(getPackage()))
        return getPackage().getPart(PartName(*uri));
    const PartName name(getOriginPartURI());
    if (!getPackage().hasPart(name))
        return std::nullopt;
    const Part part = getPackage().getPart(name);
    return part.getContentType() == getOriginPartContentType() ? std::optional(part) : std::nullopt;
}

void DigitalSignatureManager::throwIfPackageNotOpen() const {
    if (!getPackage().isOpen())
        throw PackageNotOpen("Package is not open");
}

void DigitalSignatureManager::throwIfPackageReadOnly() const {
    if (getPackage().isReadOnly())
        throw PackageReadOnly("Package is read-only");
}

void DigitalSignatureManager::throwIfPackageCreateOnly() const {
    if (getPackage().isCreateOnly())
        throw PackageCreateOnly("Package is open only for create");
}

void DigitalSignatureManager::throwIfPackageNotOpenForModify() const {
    throwIfPackageNotOpen();
    throwIfPackageReadOnly();
    throwIfPackageCreateOnly();
}

void DigitalSignatureManager::throwIfNotValidSignaturePart(const PartName& partName) const {
    if (!getPackage().hasPart(partName))
        throw SignatureNotFound("The provided signature part name is invalid or does not exist.");
    URI originURI;
    std::u16string originRelationshipID;
    const Part origin = getSignatureOriginPart(originURI, originRelationshipID);
    for (const Relationship& relationship : origin.getRelationshipsByType(getSignatureRelationshipType()))
        if (relationship.getTargetURI() == partName.getURI())
            return;
    throw SignatureNotFound("The provided part name is not a signature part.");
}

} // namespace opc::model
