#include <opc/model/Package.hpp>

#include "contenttypes/ContentTypeSource.hpp"
#include "relationships/RelationshipSerializer.hpp"
#include "xml/DocumentBudget.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/DataManager.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PackageHelper.hpp>

#include <algorithm>

namespace opc::model {

namespace {

bool hasCondition(const Exception& failure, boost::system::errc::errc_t condition) {
    return failure.code() == boost::system::errc::make_error_condition(condition);
}

} // namespace

Package::Package(interfaces::IPhysicalPackage& physical, const XmlLimits& limits)
    : RelationshipSource(PackageHelper::getPackageRootURI()), physicalPackage(physical), xmlLimits(limits) {
}

Package::~Package() {
    try {
        close(true);
    } catch (...) { // NOLINT(bugprone-empty-catch): there is nobody to tell
    }
    // Handles must learn of it also when the physical layer failed to close.
    clearParts();
}

bool Package::isValid() const {
    return true;
}

bool Package::isOpen() const {
    return opened;
}

bool Package::isReadOnly() const {
    return openMode == interfaces::OpenMode::ReadOnly;
}

bool Package::isCreateOnly() const {
    return openMode == interfaces::OpenMode::CreateOnly;
}

std::vector<interfaces::IgnoredItem> Package::getIgnoredItems() const {
    throwIfNotOpen();
    return physicalPackage.getIgnoredItems();
}

Package& Package::getPackage() const {
    return const_cast<Package&>(*this);
} // relationships parts are made through it

void Package::open(interfaces::OpenMode mode) {
    if (isOpen())
        throw PackageAlreadyOpen("Package is already open");
    openMode = mode;
    try {
        physicalPackage.open(mode);
    } catch (const Exception& e) {
        if (hasCondition(e, boost::system::errc::no_such_file_or_directory))
            throw translated<PackageNotFound>(e, e.what());
        throw translated<PackageOpenFailed>(e, e.what(), e.code());
    }

    try {
        documentBudget = std::make_shared<DocumentBudget>(xmlLimits);
        relationshipSerializer = std::make_unique<RelationshipSerializer>(documentBudget);
        contentTypeSource =
            std::make_unique<ContentTypeSource>(physicalPackage, isCreateOnly(), documentBudget);
        initializeParts();
    } catch (...) {
        forgetContent();
        physicalPackage.close(true);
        throw;
    }

    opened = true;
    try {
        throwIfTooManyCorePropertiesRelationships(1);
        forEachDataManager([this](DataManager& manager) { manager.open(isCreateOnly()); });
    } catch (...) {
        close(true);
        throw;
    }
}

void Package::close(bool abandon) {
    if (!isOpen())
        return;
    if (!isReadOnly() && !abandon)
        flush();
    try {
        physicalPackage.close(abandon);
    } catch (const Exception& e) {
        if (hasCondition(e, boost::system::errc::permission_denied))
            throw translated<PackagePermissionDenied>(e, e.what());
        throw translated<PackageCloseFailed>(e, e.what(), e.code());
    }
    forgetContent();
    opened = false;
}

void Package::forgetContent() {
    clearParts();
    RelationshipSource::reset();
    contentTypeSource.reset();
    relationshipSerializer.reset();
    documentBudget.reset();
}

void Package::flush() {
    throwIfNotOpen();
    throwIfReadOnly();
    flushPackage();
    flushParts();
}

void Package::flushPackage() {
    forEachDataManager([](DataManager& manager) { manager.flush(); });
    for (auto& entry : parts)
        entry.second.restoreRelationshipPart(); // while the content types stream can still take it up
    contentTypeSource->flush();
    RelationshipSource::flush();
}

void Package::flushParts() {
    for (auto& entry : parts)
        entry.second.flush();
}

void Package::clearParts() {
    for (auto& entry : parts)
        entry.second.markAsInvalid();
    parts.clear();
}

void Package::addDataManager(DataManager* manager) {
    if (isOpen())
        throw PackageAlreadyOpen("Can't add a data manager when package is already open");
    dataManagers.push_back(manager);
}

void Package::removeDataManager(DataManager* manager) {
    dataManagers.remove(manager);
}

void Package::forEachDataManager(const std::function<void(DataManager&)>& action) {
    const auto managers = dataManagers; // a manager at work may make or destroy others
    for (DataManager* manager : managers)
        if (std::find(dataManagers.begin(), dataManagers.end(), manager) != dataManagers.end())
            action(*manager);
}

std::unordered_set<std::u16string> Package::getManagedPartNames() const {
    std::unordered_set<std::u16string> names;
    for (const DataManager* manager : dataManagers)
        for (std::u16string& name : manager->getManagedPartNames())
            names.insert(std::move(name));
    return names;
}

std::unordered_set<std::u16string> Package::getManagedRelationshipTypes() const {
    std::unordered_set<std::u16string> types;
    for (const DataManager* manager : dataManagers)
        for (std::u16string& type : manager->getManagedRelationshipTypes())
            types.insert(std::move(type));
    return types;
}

void Package::doVerifyRelationship(const std::u16string& /*id*/, const std::u16string& type,
                                   const std::u16string& /*target*/) {
    if (type == PackageHelper::getCorePropertiesRelationshipType())
        throwIfTooManyCorePropertiesRelationships(0);
}

void Package::throwIfTooManyCorePropertiesRelationships(std::uint64_t limit) const {
    const auto found = getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType());
    if (found.size() <= limit)
        return;
    InvalidCorePropertiesRelationships failure(
        "No more than one core properties relationship can exist in a package");
    failure.addDetails("one is " + toUDEString(found.begin()->getID()) + " in /_rels/.rels");
    throw failure;
}

} // namespace opc::model
