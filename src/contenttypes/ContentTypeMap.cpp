#include "contenttypes/ContentTypeMap.hpp"

namespace opc::model {

void ContentTypeMap::clear() {
    defaults.clear();
    overrides.clear();
    unread = 0;
    contradicted = false;
    dirty = true;
}

void ContentTypeMap::addDefault(const std::u16string& extension, const ContentType& contentType) {
    const auto [entry, isNew] = defaults.try_emplace(extension, DefaultEntry{contentType});
    contradicted = contradicted || (!isNew && entry->second.contentType != contentType);
    dirty = true;
}

void ContentTypeMap::addOverride(const PartName& name, const ContentType& contentType) {
    const std::size_t before = overrides.size();
    const auto entry = overrides.emplace_hint(overrides.end(), name, contentType);
    contradicted = contradicted || (overrides.size() == before && entry->second != contentType);
    dirty = true;
}

void ContentTypeMap::setOverride(const PartName& name, const ContentType& contentType) {
    overrides.insert_or_assign(name, contentType);
    dirty = true;
}

const ContentType& ContentTypeMap::getDefault(const std::u16string& extension) const {
    return defaults.at(extension).contentType;
}

void ContentTypeMap::addReference(const std::u16string& extension) {
    ++defaults.at(extension).references;
}

const ContentType* ContentTypeMap::useDefault(const std::u16string& extension) {
    const auto entry = defaults.find(extension);
    if (entry == defaults.end())
        return nullptr;
    ++entry->second.references;
    return &entry->second.contentType;
}

void ContentTypeMap::releaseDefault(const std::u16string& extension) {
    const auto entry = defaults.find(extension);
    if (entry->second.references > 1) {
        --entry->second.references;
        return;
    }
    defaults.erase(entry);
    dirty = true;
}

void ContentTypeMap::removeOverride(const PartName& name) {
    overrides.erase(name);
    dirty = true;
}

} // namespace opc::model
