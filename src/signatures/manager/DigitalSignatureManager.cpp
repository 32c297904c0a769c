#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/manager/DigitalSignatureManagerImpl.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <algorithm>

/// @file
/// What the manager shows the package, its guards, and how it finds signatures.

namespace opc::model {

DigitalSignatureManager::DigitalSignatureManager(Package& managed)
    : DataManager(managed, false), m_impl(std::make_unique<Impl>(managed)) {
}

DigitalSignatureManager::~DigitalSignatureManager() = default;

DigitalSignatureManager::Impl& DigitalSignatureManager::loaded() const {
    if (m_impl->package
            .isCreateOnly()) // nothing is loaded, but the list may still have the signatures of an earlier package
        m_impl->list.signatures.clear();
    // Loading changes nothing that a caller can see.
    const_cast<DigitalSignatureManager*>(this)->load();
    return *m_impl;
}

void DigitalSignatureManager::doLoad() {
    m_impl->load();
}

/// There is nothing to save: each operation writes its changes to the package at once.
void DigitalSignatureManager::doSave() {
}

std::vector<std::u16string> DigitalSignatureManager::doGetManagedPartNames() const {
    if (!isPackageSigned())
        return {};
    std::vector<std::u16string> names{getOriginPartURI().toString()};
    for (const DigitalSignature& signature : m_impl->list.signatures)
        names.push_back(getSignaturePartName(signature.getName()).toString());
    return names;
}

std::vector<std::u16string> DigitalSignatureManager::doGetManagedRelationshipTypes() const {
    if (!isPackageSigned())
        return {};
    return {getOriginRelationshipType(), getSignatureRelationshipType()};
}

Enumerator<std::vector<DigitalSignature>> DigitalSignatureManager::getSignatures() {
    m_impl->throwIfNotOpen();
    return Enumerator<std::vector<DigitalSignature>>(loaded().list.signatures);
}

DigitalSignature DigitalSignatureManager::getSignature(const std::u16string& name) {
    m_impl->throwIfNotOpen();
    return *loaded().find(name);
}

DigitalSignature DigitalSignatureManager::getCountersignature() {
    loaded();
    return getSignature(getSignatureName(COUNTERSIGNATURE_ID));
}

bool DigitalSignatureManager::isPackageSigned() const {
    m_impl->throwIfNotOpen();
    return !loaded().list.signatures.empty();
}

bool DigitalSignatureManager::isPackageCountersigned() const {
    m_impl->throwIfNotOpen();
    return loaded().isCountersigned();
}

bool DigitalSignatureManager::isSigned(const PartName& name) const {
    m_impl->throwIfNotOpen();
    const auto& signatures = loaded().list.signatures;
    return std::any_of(signatures.begin(), signatures.end(), [&name](const DigitalSignature& signature) {
        const auto& names = DigitalSignatureData::of(signature).m_signedPartNames;
        return std::find(names.begin(), names.end(), name) != names.end();
    });
}

bool DigitalSignatureManager::hasForeignSignatures() const {
    return !m_impl->package.getRelationshipsByType(getForeignOriginRelationshipType()).empty();
}

void DigitalSignatureManager::Impl::throwIfNotOpen() const {
    if (!package.isOpen())
        throw PackageNotOpen("Package is not open");
}

void DigitalSignatureManager::Impl::throwIfNotOpenForModify() const {
    throwIfNotOpen();
    if (package.isReadOnly())
        throw PackageReadOnly("Package is read-only");
    if (package.isCreateOnly())
        throw PackageCreateOnly("Package is open only for create");
}

std::vector<DigitalSignature>::iterator DigitalSignatureManager::Impl::find(const std::u16string& name) {
    throwIfNotSignaturePart(getSignaturePartName(name));
    const auto found =
        std::find_if(list.signatures.begin(), list.signatures.end(),
                     [&name](const DigitalSignature& entry) { return entry.getName() == name; });
    if (found == list.signatures.end())
        throw SignatureNotFound("Could not find the given signature by the given name.");
    return found;
}

bool DigitalSignatureManager::Impl::isCountersigned() const {
    return package.hasPart(getSignaturePartName(getSignatureName(COUNTERSIGNATURE_ID)));
}

DigitalSignatureManager::Impl::Origin DigitalSignatureManager::Impl::getOrigin() const {
    const auto relationships = package.getRelationshipsByType(getOriginRelationshipType());
    if (relationships.empty())
        throw SignatureNotFound("Internal Error: No signature origin present.");
    const Relationship& first = *relationships.begin();
    return {package.getPart(PartName(first.getTargetURI())), first};
}

std::optional<URI> DigitalSignatureManager::Impl::findOriginOfSignatures() const {
    return list.signatures.empty() ? std::nullopt : findOriginURI(package);
}

void DigitalSignatureManager::Impl::throwIfNotSignaturePart(const PartName& partName) const {
    if (!package.hasPart(partName))
        throw SignatureNotFound("The provided signature part name is invalid or does not exist.");
    for (const Relationship& relationship :
         getOrigin().part.getRelationshipsByType(getSignatureRelationshipType()))
        if (relationship.getTargetURI() == partName.getURI())
            return;
    throw SignatureNotFound("The provided part name is not a signature part.");
}

} // namespace opc::model
