#include "memory/Arena.hpp"
#include "package/PackageImpl.hpp"
#include "package/PartImpl.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Builds the registry of parts from the parts of the store, and finds the source of each relationships part.

namespace opc::model {

namespace {

/// The keys of part names, which decide whether two names are equal: in lower case, in UTF-8, because a URI is
/// US-ASCII. They are in one block of memory in the order of arrival, which is the order in which they are compared.
class Keys {
public:
    std::string_view keep(std::u16string_view name) {
        char* const kept = allocate(name.size());
        std::transform(name.begin(), name.end(), kept, [](char16_t unit) {
            return static_cast<char>(unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : unit);
        });
        return {kept, name.size()};
    }

    std::string_view join(std::string_view left, std::string_view right) {
        char* const kept = allocate(left.size() + right.size());
        std::copy(right.begin(), right.end(), std::copy(left.begin(), left.end(), kept));
        return {kept, left.size() + right.size()};
    }

private:
    char* allocate(std::size_t size) { return static_cast<char*>(memory.allocate(size, 1)); }

    std::array<std::byte, 2048> first; // enough for most packages
    Arena memory{first.data(), first.size()};
};

struct RegularPart {
    std::string_view key;
    const PartName* name;
    const ContentType* contentType; ///< of its `Override`; null if there is none
    interfaces::IPhysicalPart* physicalPart;
};

struct RelationshipsPart {
    std::string_view key; ///< of its source's path
    interfaces::IPhysicalPart* physicalPart;
};

/// Sorts parts by their keys. Of parts with the same key, the first one stays, with the content of the last one.
template <typename Found>
void sortByKey(std::vector<Found>& parts) {
    std::stable_sort(parts.begin(), parts.end(),
                     [](const Found& left, const Found& right) { return left.key < right.key; });

    std::size_t kept = 0;
    for (Found& part : parts) {
        if (kept > 0 && parts[kept - 1].key == part.key)
            parts[kept - 1].physicalPart = part.physicalPart;
        else if (&parts[kept++] != &part)
            parts[kept - 1] = std::move(part);
    }
    parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(kept), parts.end());
}

/// The relationships parts of the store, until their sources take them.
class RelationshipsParts {
public:
    RelationshipsParts(std::size_t count, Keys& keys) : keys(keys) { parts.reserve(count); }

    /// @param key  the key of its own name
    void add(std::string_view key, interfaces::IPhysicalPart* physicalPart) {
        constexpr std::string_view FOLDER = "/_rels/";
        constexpr std::string_view EXTENSION = ".rels";
        const std::size_t file = key.rfind('/') + 1;
        const bool isNextToSource =
            file >= FOLDER.size() && key.compare(file - FOLDER.size(), FOLDER.size(), FOLDER) == 0 &&
            key.size() - file >= EXTENSION.size() &&
            key.compare(key.size() - EXTENSION.size(), EXTENSION.size(), EXTENSION) == 0;
        if (!isNextToSource) {
            orphan = physicalPart; // "_rels" may be further up in the path: then it has no source
            return;
        }
        const std::string_view folder = key.substr(0, file - FOLDER.size() + 1);
        parts.push_back(
            {keys.join(folder, key.substr(file, key.size() - file - EXTENSION.size())), physicalPart});
    }

    void sort() {
        sortByKey(parts);
        next = parts.begin();
    }

    /// Takes the relationships part of a source; null if there is none.
    interfaces::IPhysicalPart* take(std::string_view path) {
        // In the order of names it is the next one or none, apart from what follows the path.
        if (next == parts.end() || next->key != path)
            next = std::lower_bound(
                parts.begin(), parts.end(), path,
                [](const RelationshipsPart& part, std::string_view sought) { return part.key < sought; });
        if (next == parts.end() || next->key != path)
            return nullptr;
        return std::exchange((next++)->physicalPart, nullptr);
    }

    /// A relationships part that no source has taken; null if there is none.
    const interfaces::IPhysicalPart* findOrphan() const {
        const auto left = std::find_if(parts.begin(), parts.end(), [](const RelationshipsPart& part) {
            return part.physicalPart != nullptr;
        });
        return left != parts.end() ? left->physicalPart : orphan;
    }

private:
    Keys& keys;
    std::vector<RelationshipsPart> parts;
    std::vector<RelationshipsPart>::iterator next = parts.end();
    const interfaces::IPhysicalPart* orphan = nullptr; // one that can't have a source
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

    Keys keys;
    std::vector<PartName> names;
    names.reserve(physicalParts.size()); // references to them stay good
    std::vector<RegularPart> regular;
    regular.reserve(physicalParts.size());
    RelationshipsParts relationships(physicalParts.size(), keys);
    for (interfaces::IPhysicalPart* physicalPart : physicalParts) {
        std::u16string text = physicalPart->getName();
        const std::string_view key = keys.keep(text);
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
        if (auto* match = relationships.take(isPath ? key : keys.keep(name->getURI().getPath())))
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
