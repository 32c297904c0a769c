#include "package/PackageImpl.hpp"
#include "package/PartImpl.hpp"
#include "package/PartKeys.hpp"
#include "package/RelationshipsParts.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Builds the registry of parts from the parts of the store, and finds the source of each relationships part.

namespace opc::model {

namespace {

struct RegularPart {
    std::string_view key;
    const PartName* name;
    const ContentType* contentType; ///< of its `Override`; null if there is none
    interfaces::IPhysicalPart* physicalPart;
};

/// The name that the store gives. A failure names it.
PartName readName(std::u16string text, const interfaces::IPhysicalPart& physicalPart) {
    try {
        return PartName(std::move(text));
    } catch (Exception& e) {
        e.addDetails(toUDEString(physicalPart.getName()));
        e.setPart(toUDEString(physicalPart.getName()));
        throw;
    }
}

} // namespace

void Package::Impl::load() {
    documentBudget = std::make_shared<DocumentBudget>(xmlLimits);
    relationshipSerializer = std::make_unique<RelationshipSerializer>(documentBudget);
    contentTypeSource =
        std::make_unique<ContentTypeSource>(physicalPackage, package.isCreateOnly(), documentBudget);
    initializeParts();
}

ContentType Package::Impl::findContentType(const PartName& name, const ContentType* own,
                                           const interfaces::IPhysicalPart& physicalPart) {
    if (own != nullptr)
        return *own;
    return physicalPackage.usesContentTypeStream() ? contentTypeSource->useDefault(name)
                                                   : ContentType(physicalPart.getContentType());
}

void Package::Impl::initializeParts() {
    std::vector<interfaces::IPhysicalPart*> physicalParts;
    try {
        physicalParts = physicalPackage.getParts();
    } catch (const Exception& e) {
        throw translated<PackageOpenFailed>(e, e.what(), e.code());
    }

    if (std::find(physicalParts.begin(), physicalParts.end(), nullptr) != physicalParts.end())
        throw PackageOpenFailed("The physical layer lists a part that it doesn't give", {});

    PartKeys keys;
    std::vector<PartName> names;
    names.reserve(physicalParts.size()); // references to them stay good
    std::vector<RegularPart> regular;
    regular.reserve(physicalParts.size());
    RelationshipsParts relationships(physicalParts.size(), keys);
    for (interfaces::IPhysicalPart* physicalPart : physicalParts) {
        std::u16string text = physicalPart->getName();
        const std::string_view key = keys.keep<char16_t>(text);
        const auto* const entry = contentTypeSource->findOverride(text);
        const ContentType* const own = entry == nullptr ? nullptr : &entry->second;
        // Nearly always both texts are the same, and the part shares the name of its entry.
        const PartName& name = names.emplace_back(entry != nullptr && entry->first.hasText(text)
                                                      ? entry->first
                                                      : readName(std::move(text), *physicalPart));
        if (name.isRelationshipName()) {
            // Only for the effects: a relationships part must have a content type, and it uses the `Default` of its
            // extension.
            findContentType(name, own, *physicalPart);
            relationships.add(key, physicalPart);
        } else {
            regular.push_back({key, &name, own, physicalPart});
        }
    }
    sortByKey(regular);
    relationships.sort();

    PartMap found;
    for (const auto& [key, name, own, physicalPart] : regular) {
        Part part(std::make_shared<Part::Impl>(&package, physicalPart, *name,
                                               findContentType(*name, own, *physicalPart), openMode));
        const bool isPath = key.front() == '/' && key.find('?') == std::string_view::npos &&
                            key.find('#') == std::string_view::npos;
        if (auto* match = relationships.take(isPath ? key : keys.keep<char16_t>(name->getURI().getPath())))
            part.setPhysicalRelationshipPart(match, false);
        found.emplace_hint(found.end(), *name, part);
    }
    if (auto* match = relationships.take("/"))
        package.setPhysicalRelationshipPart(match, false);

    parts.swap(found);
    if (const auto* orphan = relationships.findOrphan()) {
        InconsistentPackage failure("Not all relationship parts were matched with regular parts");
        failure.addDetails(toUDEString(orphan->getName()) + " has no source");
        failure.setPart(toUDEString(orphan->getName()));
        throw failure;
    }
}

} // namespace opc::model
