#include <opc/model/Package.hpp>

#include "package/ContentTypeSource.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <memory_resource>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// @file
/// How the registry of parts is built from what the physical package holds, and each relationships part is
/// matched with its source.

namespace opc::model {

namespace {

/// What tells a part name from all others: letter case doesn't count, and a URI is US-ASCII.
std::string caselessKey(const std::u16string& name) {
    std::string key(name.size(), '\0');
    std::transform(name.begin(), name.end(), key.begin(), [](char16_t unit) {
        return static_cast<char>(unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : unit);
    });
    return key;
}

/// Keys, one behind the other: there are many, which are compared in the order in which they came.
class Keys {
public:
    std::string_view keep(std::string_view key) {
        auto* const kept = static_cast<char*>(memory.allocate(key.size(), 1));
        std::copy(key.begin(), key.end(), kept);
        return {kept, key.size()};
    }

private:
    std::pmr::monotonic_buffer_resource memory;
};

struct RegularPart {
    std::string_view key;
    const PartName* name;
    interfaces::IPhysicalPart* physicalPart;
};

struct RelationshipsPart {
    std::string_view key; ///< of its source's path
    interfaces::IPhysicalPart* physicalPart;
};

/// Sorts parts by their keys. Of parts of one key the first stays, with the content of the last.
template <typename Found>
void sortByKey(std::vector<Found>& parts) {
    const auto precedes = [](const Found& left, const Found& right) { return left.key < right.key; };
    // Programs write parts in some order of their own: runs that are in order already are merged, neighbour by
    // neighbour.
    std::vector<typename std::vector<Found>::iterator> ends{parts.begin()};
    // cppcheck-suppress mismatchingContainers ; `ends` holds places in `parts`
    while (ends.back() != parts.end())
        ends.push_back(std::is_sorted_until(ends.back(), parts.end(), precedes));
    while (ends.size() > 2) {
        std::size_t kept = 1;
        for (std::size_t i = 2; i < ends.size(); i += 2) {
            std::inplace_merge(ends[i - 2], ends[i - 1], ends[i], precedes);
            ends[kept++] = ends[i];
        }
        if (ends.size() % 2 == 0)
            ends[kept++] = ends.back();
        ends.resize(kept);
    }

    std::size_t kept = 0;
    for (Found& part : parts) {
        if (kept > 0 && parts[kept - 1].key == part.key)
            parts[kept - 1].physicalPart = part.physicalPart;
        else if (&parts[kept++] != &part)
            parts[kept - 1] = std::move(part);
    }
    parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(kept), parts.end());
}

/// The relationships parts that a physical package gives, to be taken by their sources.
class RelationshipsParts {
public:
    RelationshipsParts(std::size_t count, Keys& memory) : keys(memory) { parts.reserve(count); }

    /// @param key  of its own name
    void add(std::string key, interfaces::IPhysicalPart* physicalPart) {
        constexpr std::string_view FOLDER = "/_rels/";
        constexpr std::string_view EXTENSION = ".rels";
        const std::size_t file = key.rfind('/') + 1;
        const bool isNextToSource =
            file >= FOLDER.size() && key.compare(file - FOLDER.size(), FOLDER.size(), FOLDER) == 0 &&
            key.size() - file >= EXTENSION.size() &&
            key.compare(key.size() - EXTENSION.size(), EXTENSION.size(), EXTENSION) == 0;
        if (!isNextToSource) {
            orphan = physicalPart; // "_rels" may stand further up, where no source leads
            return;
        }
        key.resize(key.size() - EXTENSION.size());
        key.erase(file - FOLDER.size() + 1, FOLDER.size() - 1);
        parts.push_back({keys.keep(key), physicalPart});
    }

    void sort() {
        sortByKey(parts);
        next = parts.begin();
    }

    /// The relationships part of a source, which is then taken; null if there is none.
    interfaces::IPhysicalPart* take(std::string_view path) {
        // In the order of names it is the next one or none, but for what stands behind the path.
        if (next == parts.end() || next->key != path)
            next = std::lower_bound(
                parts.begin(), parts.end(), path,
                [](const RelationshipsPart& part, std::string_view sought) { return part.key < sought; });
        if (next == parts.end() || next->key != path)
            return nullptr;
        return std::exchange((next++)->physicalPart, nullptr);
    }

    /// One that no source has taken; null if there is none.
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
    const interfaces::IPhysicalPart* orphan = nullptr; // one that no source can take
};

/// The name that the physical layer gives; the failure tells it.
PartName readName(const std::u16string& text) {
    try {
        return PartName(text);
    } catch (Exception& e) {
        e.addDetails(toUDEString(text));
        throw;
    }
}

} // namespace

ContentType Package::findContentType(const PartName& name, interfaces::IPhysicalPart& physicalPart) {
    return physicalPackage.usesContentTypeStream() ? contentTypeSource->getContentType(name)
                                                   : ContentType(physicalPart.getContentType());
}

void Package::initializeParts() {
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
    names.reserve(physicalParts.size()); // they stay where they are
    std::vector<RegularPart> regular;
    regular.reserve(physicalParts.size());
    RelationshipsParts relationships(physicalParts.size(), keys);
    for (interfaces::IPhysicalPart* physicalPart : physicalParts) {
        const std::u16string text = physicalPart->getName();
        std::string key = caselessKey(text);
        const PartName name = readName(text);
        if (name.isRelationshipName()) {
            // For its effects: it must have a content type, and keeps the `Default` of its extension in use.
            findContentType(name, *physicalPart);
            relationships.add(std::move(key), physicalPart);
        } else {
            regular.push_back({keys.keep(key), &names.emplace_back(name), physicalPart});
        }
    }
    sortByKey(regular);
    relationships.sort();

    PartMap found(parts.get_allocator());
    for (const auto& [key, name, physicalPart] : regular) {
        Part part(this, physicalPart, *name, findContentType(*name, *physicalPart), openMode);
        const URI uri = name->getURI();
        const bool isPath = !uri.isAbsolute() && !uri.hasQuery() && !uri.hasFragment();
        if (auto* match = isPath ? relationships.take(key) : relationships.take(caselessKey(uri.getPath())))
            part.setPhysicalRelationshipPart(match, false);
        found.emplace_hint(found.end(), *name, part);
    }
    if (auto* match = relationships.take("/"))
        setPhysicalRelationshipPart(match, false);

    parts.swap(found);
    if (const auto* orphan = relationships.findOrphan()) {
        InconsistentPackage failure("Not all relationship parts were matched with regular parts");
        failure.addDetails(toUDEString(orphan->getName()) + " has no source");
        throw failure;
    }
}

} // namespace opc::model
