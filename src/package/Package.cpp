#include <opc/model/Package.hpp>

#include "package/PackageImpl.hpp"
#include "package/PartImpl.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/DataManager.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PackageHelper.hpp>

#include <algorithm>

namespace opc::model {

namespace {

bool hasCondition(const Exception& failure, boost::system::errc::errc_t condition) {
    return failure.code() == boost::system::errc::make_error_condition(condition);
}

/// @throws InvalidCorePropertiesRelationships  [M4.1]
void throwIfTooManyCorePropertiesRelationships(const Package& package, std::size_t limit) {
    const auto found = package.getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType());
    if (found.size() <= limit)
        return;
    InvalidCorePropertiesRelationships failure(
        "No more than one core properties relationship can exist in a package");
    const std::string id = toUDEString(found.begin()->getID());
    failure.addDetails("one is " + id + " in /_rels/.rels");
    failure.setPart("/_rels/.rels");
    failure.setRelationship(id);
    throw failure;
}

} // namespace

Package::Impl::Impl(Package& package, interfaces::IPhysicalPackage& physicalPackage,
                    const XmlLimits& xmlLimits)
    : RelationshipSource::Impl(PackageHelper::getPackageRootURI()), package(package),
      physicalPackage(physicalPackage), xmlLimits(xmlLimits) {
}

Package::Package(interfaces::IPhysicalPackage& physical, const XmlLimits& limits)
    : RelationshipSource(std::make_shared<Impl>(*this, physical, limits)) {
}

Package::~Package() {
    try {
        close(true);
    } catch (...) { // NOLINT(bugprone-empty-catch): a destructor can't report it
    }
    // Handles must know that their part is gone, even if the store failed to close.
    state().clearParts();
}

Package::Impl& Package::state() const noexcept {
    return static_cast<Impl&>(getState());
}

bool Package::isValid() const {
    return true;
}

bool Package::isOpen() const {
    return state().opened;
}

bool Package::isReadOnly() const {
    return state().openMode == interfaces::OpenMode::ReadOnly;
}

bool Package::isCreateOnly() const {
    return state().openMode == interfaces::OpenMode::CreateOnly;
}

std::vector<interfaces::IgnoredItem> Package::getIgnoredItems() const {
    throwIfNotOpen();
    interfaces::IPhysicalPackage& store = state().physicalPackage;
    std::vector<interfaces::MisnamedItem> misnamed = store.getMisnamedItems(); // may find more to ignore
    std::vector<interfaces::IgnoredItem> items = store.getIgnoredItems();
    for (interfaces::MisnamedItem& item : misnamed)
        if (!item.isPiece) // which this library joins
            items.push_back(
                {std::move(item.name), item.reason + ": other programs may take it for something else"});
    return items;
}

// The result serves to create relationships parts.
Package& Package::getPackage() const {
    return const_cast<Package&>(*this);
}

void Package::open(interfaces::OpenMode mode) {
    if (isOpen())
        throw PackageAlreadyOpen("Package is already open");
    state().openMode = mode;
    try {
        state().physicalPackage.open(mode);
    } catch (const Exception& e) {
        if (hasCondition(e, boost::system::errc::no_such_file_or_directory))
            throw translated<PackageNotFound>(e, e.what());
        throw translated<PackageOpenFailed>(e, e.what(), e.code());
    }

    try {
        state().load();
    } catch (...) {
        state().forgetContent();
        state().physicalPackage.close(true);
        throw;
    }

    state().opened = true;
    try {
        throwIfTooManyCorePropertiesRelationships(*this, 1);
        state().forEachDataManager([this](DataManager& manager) { manager.open(isCreateOnly()); });
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
        state().physicalPackage.close(abandon);
    } catch (const Exception& e) {
        if (hasCondition(e, boost::system::errc::permission_denied))
            throw translated<PackagePermissionDenied>(e, e.what());
        throw translated<PackageCloseFailed>(e, e.what(), e.code());
    }
    state().forgetContent();
    state().opened = false;
}

void Package::Impl::forgetContent() {
    clearParts();
    package.reset();
    contentTypeSource.reset();
    relationshipSerializer.reset();
    documentBudget.reset();
}

void Package::flush() {
    throwIfNotOpen();
    throwIfReadOnly();
    state().flushPackage();
    state().flushParts();
}

void Package::Impl::flushPackage() {
    forEachDataManager([](DataManager& each) { each.flush(); });
    for (auto& entry : parts)
        entry.second.restoreRelationshipPart(); // before the content types stream is written
    contentTypeSource->flush();
    package.RelationshipSource::flush();
}

void Package::Impl::flushParts() {
    for (auto& entry : parts)
        entry.second.flush();
}

void Package::Impl::clearParts() {
    for (auto& entry : parts)
        entry.second.state().valid = false;
    parts.clear();
}

void Package::Impl::addDataManager(DataManager* added) {
    if (opened)
        throw PackageAlreadyOpen("Can't add a data manager when package is already open");
    dataManagers.push_back(added);
}

void Package::Impl::removeDataManager(DataManager* removed) {
    dataManagers.remove(removed);
}

void Package::Impl::forEachDataManager(const std::function<void(DataManager&)>& action) {
    const auto managers = dataManagers; // a manager may create or destroy others meanwhile
    for (DataManager* each : managers)
        if (std::find(dataManagers.begin(), dataManagers.end(), each) != dataManagers.end())
            action(*each);
}

std::unordered_set<std::u16string, TextHash> Package::Impl::getManagedPartNames() const {
    std::unordered_set<std::u16string, TextHash> names;
    for (const DataManager* each : dataManagers)
        for (std::u16string& name : each->getManagedPartNames())
            names.insert(std::move(name));
    return names;
}

std::unordered_set<std::u16string, TextHash> Package::Impl::getManagedRelationshipTypes() const {
    std::unordered_set<std::u16string, TextHash> types;
    for (const DataManager* each : dataManagers)
        for (std::u16string& type : each->getManagedRelationshipTypes())
            types.insert(std::move(type));
    return types;
}

void Package::doVerifyRelationship(const std::u16string& /*id*/, const std::u16string& type,
                                   const std::u16string& /*target*/) {
    if (type == PackageHelper::getCorePropertiesRelationshipType())
        throwIfTooManyCorePropertiesRelationships(*this, 0);
}

} // namespace opc::model
