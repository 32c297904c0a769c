#include "package/PackageImpl.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <string>

/// Compares a new name with the names of all parts [M1.11]: searches for names in its folder, and for each folder
/// above it.

namespace opc::model {

bool Package::isPartDerivedFromExistingPartName(const PartName& name, std::u16string& existing) const {
    const Impl::PartMap& parts = state().parts;
    std::u16string text = toLowerASCIIString(name.toString());
    // In the order of names, all names below a folder are neighbours.
    const std::u16string folder = text + URI::getSlash();
    const auto behind = parts.lower_bound(folder);
    if (behind != parts.end() &&
        toLowerASCIIString(behind->first.toString()).compare(0, folder.size(), folder) == 0) {
        existing = text;
        return true;
    }
    for (auto slash = text.rfind(URI::getSlash()); slash != std::u16string::npos;
         slash = text.rfind(URI::getSlash())) {
        text.resize(slash);
        if (parts.find(text) != parts.end()) {
            existing = text;
            return true;
        }
    }
    return false;
}

void Package::Impl::throwIfDerivedFromExistingPartName(const PartName& name) const {
    std::u16string existing;
    if (!package.isPartDerivedFromExistingPartName(name, existing))
        return;
    const std::u16string text = name.toString();
    if (text.size() <= existing.size())
        throw aboutPart(
            toUDEString(text),
            PartIsDerivedFromExistingPartName(
                "Cannot use a part name that is a subset of an existing name: " + toASCIIString(text)));
    throw aboutPart(toUDEString(text), PartIsDerivedFromExistingPartName(
                                           "Cannot use a part name that is a superset of an existing name: " +
                                           toASCIIString(existing)));
}

} // namespace opc::model
