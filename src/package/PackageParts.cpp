#include "contenttypes/ContentTypeSerializer.hpp"
#include "names/PartNameGrammar.hpp"
#include "package/PackageImpl.hpp"
#include "package/PartImpl.hpp"
#include "xml/LongTags.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>

/// @file
/// The registry of parts: how parts are created, found and deleted.

namespace opc::model {

namespace {

[[noreturn]] void throwPartNotFound(const PartName& name) {
    throw aboutPart(toUDEString(name.toString()),
                    PartNotFound("No part found with the name:" + toASCIIString(name.toString())));
}

void throwIfRelationshipName(const PartName& name) {
    if (name.isRelationshipName())
        throw aboutPart(toUDEString(name.toString()),
                        PartHasRelationshipName("Cannot use a part name that is a relationship name: " +
                                                toASCIIString(name.toString())));
}

void throwIfStreamCanNotHold(const ContentType& contentType) {
    if (!ContentTypeSerializer().canHold(contentType))
        throw InvalidContentType("Could not successfully parse content type string");
}

} // namespace

Part Package::createPart(const PartName& name, const ContentType& contentType,
                         const interfaces::IPhysicalPartInfo& partInfo) {
    throwIfNotOpen();
    throwIfReadOnly();
    throwIfRelationshipName(name);
    const auto place = state().findPlaceOfNewPart(name);
    state().throwIfDerivedFromExistingPartName(name);
    throwIfNoNameForNewPart(name);
    if (!fitsIntoTag(name.toString()))
        throw InvalidPartName("A part name shall not be longer than 1 MiB.");
    throwIfStreamCanNotHold(contentType);

    // Allocates memory first: the part is added completely or not at all.
    Part part(std::make_shared<Part::Impl>(this, nullptr, name, contentType, state().openMode));
    Impl::PartMap entry;
    entry.emplace(name, part);
    part.state().physicalPart = state().createPartInternal(name, contentType, partInfo);
    state().parts.insert(place, entry.extract(entry.begin()));
    return part;
}

interfaces::IPhysicalPart* Package::Impl::createPartInternal(const PartName& name, const ContentType& type,
                                                             const interfaces::IPhysicalPartInfo& partInfo) {
    contentTypeSource->throwIfFixed();
    interfaces::IPhysicalPart* physicalPart = nullptr;
    try {
        physicalPart = physicalPackage.createPart(name.toString(), type.toString(), partInfo);
    } catch (const Exception& e) {
        throw translated<PartCreateFailed>(e, e.what());
    }
    if (physicalPart == nullptr)
        throw PartCreateFailed("The physical layer gives no part");
    contentTypeSource->addContentType(name, type);
    return physicalPart;
}

void Package::deletePart(const PartName& name) {
    throwIfNotOpen();
    throwIfReadOnly();
    throwIfCreateOnly();

    Impl::PartMap& parts = state().parts;
    const auto entry = parts.find(name);
    if (entry == parts.end())
        throwPartNotFound(name);
    state().contentTypeSource->throwIfFixed();
    Part part = entry->second;

    std::string errors;
    bool failed = false;
    // Forgets at once what is deleted. If the second deletion fails, the part stays, and the next attempt begins there.
    const auto deletePhysical = [&](const interfaces::IPhysicalPart* physicalPart, const auto& forget) {
        if (physicalPart == nullptr)
            return;
        // The spelling of the store: the caller's may have another letter case.
        const PartName physicalName(physicalPart->getName());
        const std::u16string extension = ContentTypeSource::extensionKey(physicalName);
        try {
            state().deletePhysicalPart(physicalName);
        } catch (const PartDeleteFailed& e) {
            failed = true;
            errors += (errors.empty() ? "" : "; ") + std::string(e.what());
            return;
        }
        forget();
        state().contentTypeSource->removeContentType(physicalName, extension);
    };
    deletePhysical(part.state().physicalPart, [&part] { part.state().forgetPhysicalPart(); });
    deletePhysical(part.getPhysicalRelationshipPart(), [&part] { part.forgetPhysicalRelationshipPart(); });
    if (failed)
        throw PartDeleteFailed(errors);

    part.state().valid = false;
    parts.erase(entry);
}

void Package::setContentType(const PartName& name, const ContentType& contentType) {
    throwIfNotOpen();
    throwIfReadOnly();
    Part part = getPart(name);
    const interfaces::IPhysicalPart* const physicalPart = part.state().physicalPart;
    if (physicalPart == nullptr)
        throw InvalidPartStream("The part's content has been deleted");
    throwIfStreamCanNotHold(contentType);
    state().contentTypeSource->throwIfFixed();
    const PartName physicalName(physicalPart->getName()); // in the spelling of the store
    state().contentTypeSource->changeContentType(physicalName, contentType);
    part.state().contentType = contentType;
}

void Package::Impl::deletePartInternal(const PartName& name) {
    const std::u16string extension = ContentTypeSource::extensionKey(name);
    deletePhysicalPart(name);
    contentTypeSource->removeContentType(name, extension);
}

void Package::Impl::deletePhysicalPart(const PartName& name) {
    try {
        physicalPackage.deletePart(name.toString());
    } catch (const Exception& e) {
        throw translated<PartDeleteFailed>(e, e.what());
    }
}

Part Package::getPart(const PartName& name) const {
    throwIfNotOpen();
    const auto entry = state().parts.find(name);
    if (entry == state().parts.end())
        throwPartNotFound(name);
    return entry->second;
}

bool Package::hasPart(const PartName& name) const {
    throwIfNotOpen();
    return state().parts.count(name) != 0;
}

Enumerator<std::vector<Part>> Package::getParts(ExcludeMode mode) const {
    throwIfNotOpen();
    std::unordered_set<std::u16string, TextHash> managed;
    if (mode == ExcludeMode::ExcludeManaged)
        managed = state().getManagedPartNames();

    std::vector<Part> kept;
    kept.reserve(state().parts.size());
    for (const auto& [name, part] : state().parts) {
        // One by one, because a hash can't ignore letter case.
        const auto isName = [&partName = name](const std::u16string& text) { return text == partName; };
        if (std::none_of(managed.begin(), managed.end(), isName))
            kept.push_back(part);
    }
    return Enumerator<std::vector<Part>>(std::move(kept));
}

bool Package::hasUnreadContentTypes() const {
    throwIfNotOpen();
    return state().contentTypeSource->hasUnread();
}

Package::Impl::PartMap::const_iterator Package::Impl::findPlaceOfNewPart(const PartName& name) const {
    const auto place = parts.lower_bound(name);
    if (place != parts.end() && place->first == name)
        throw aboutPart(toUDEString(name.toString()),
                        PartAlreadyExists("Cannot use a part name that already exists: " +
                                          toASCIIString(name.toString())));
    return place;
}

} // namespace opc::model
