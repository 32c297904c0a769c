#include "package/ContentTypeMap.hpp"

namespace opc::model {

void ContentTypeMap::clear() {
    defaults.clear();
    overrides.clear();
    dirty = true;
}

void ContentTypeMap::addDefault(const std::u16string& extension, const ContentType& contentType) {
    defaults.try_emplace(extension, DefaultEntry{contentType});
    dirty = true;
}

void ContentTypeMap::addOverride(const PartName& name, const ContentType& contentType) {
    overrides.emplace_hint(overrides.end(), name, contentType);
    dirty = true;
}

const ContentType& ContentTypeMap::getDefault(const std::u16string& extension) const {
    return defaults.at(extension).contentType;
}

void ContentTypeMap::addReference(const std::u16string& extension) {
    ++defaults.at(extension).references;
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
