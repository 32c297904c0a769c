#include <opc/model/Package.hpp>

#include "package/ContentTypeSource.hpp"

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PackageHelper.hpp>

#include <functional>

/// @file
/// How the registry of parts is built from what the physical package holds, and each relationships part is
/// matched with its source.

namespace opc::model {

ContentType Package::findContentType(const PartName& name, interfaces::IPhysicalPart& physicalPart) {
    return physicalPackage.usesContentTypeStream() ? contentTypeSource->getContentType(name)
                                                   : ContentType(physicalPart.getContentType());
}

void Package::initializeParts() {
    std::vector<interfaces::IPhysicalPart*> physicalParts;
    try {
        physicalParts = physicalPackage.getParts();
    } catch (const Exception& e) {
        throw PackageOpenFailed(e.what(), e.code());
    }

    // std::less<> so that a name can be looked up by its text.
    std::map<PartName, interfaces::IPhysicalPart*, std::less<>> regular;
    std::map<PartName, interfaces::IPhysicalPart*, std::less<>> relationship;
    for (interfaces::IPhysicalPart* physicalPart : physicalParts) {
        const PartName name(physicalPart->getName());
        if (name.isRelationshipName()) {
            // For its effects: it must have a content type, and keeps the `Default` of its extension in use.
            findContentType(name, *physicalPart);
            relationship[name] = physicalPart;
        } else {
            regular[name] = physicalPart;
        }
    }

    PartMap found;
    for (const auto& [name, physicalPart] : regular) {
        Part part(this, physicalPart, name, findContentType(name, *physicalPart), openMode);
        const auto match = relationship.find(name.getRelationshipPartName());
        if (match != relationship.end()) {
            part.setPhysicalRelationshipPart(match->second, false);
            relationship.erase(match);
        }
        found.emplace_hint(found.end(), name, part);
    }

    const PartName root(PackageHelper::getPackageRootURI());
    const auto match = relationship.find(root.getRelationshipPartName());
    if (match != relationship.end()) {
        setPhysicalRelationshipPart(match->second, false);
        relationship.erase(match);
    }

    parts.swap(found);
    prefixes.reserve(parts.size());
    for (const auto& entry : parts)
        populatePrefixes(entry.first);

    if (!relationship.empty())
        throw InconsistentPackage("Not all relationship parts were matched with regular parts");
}

} // namespace opc::model
