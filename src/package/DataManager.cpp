#include <opc/model/DataManager.hpp>

#include "package/PackageImpl.hpp"

namespace opc::model {

DataManager::DataManager(Package& package, bool loadOnOpen) : package(&package), loadOnOpen(loadOnOpen) {
    package.state().addDataManager(this);
}

DataManager::~DataManager() {
    package->state().removeDataManager(this);
}

void DataManager::open(bool createOnly) {
    dirty = createOnly;
    needsLoad = !createOnly;
    if (loadOnOpen)
        load();
}

void DataManager::load() {
    if (!needsLoad)
        return;
    doLoad();
    needsLoad = false;
    dirty = false;
}

void DataManager::markAsDirty() noexcept {
    needsLoad = false;
    dirty = true;
}

void DataManager::flush() {
    save();
}

void DataManager::save() {
    if (!dirty)
        return;
    doSave();
    dirty = false;
}

} // namespace opc::model
