#include <opc/model/Package.hpp>

#include "package/ContentTypeSource.hpp"

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PackageHelper.hpp>

#include <algorithm>
#include <string>
#include <unordered_map>
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

/// The regular parts that a physical package gives.
class FoundParts {
public:
    struct Entry {
        std::string key;
        PartName name;
        interfaces::IPhysicalPart* physicalPart;
    };

    void add(std::string key, PartName name, interfaces::IPhysicalPart* physicalPart) {
        entries.push_back({std::move(key), std::move(name), physicalPart});
    }

    /// In the order of names. Of equal names the first spelling and the last part count.
    const std::vector<Entry>& inOrder() {
        const auto precedes = [](const Entry& left, const Entry& right) { return left.key < right.key; };
        std::stable_sort(entries.begin(), entries.end(), precedes);
        std::size_t kept = 0;
        for (Entry& entry : entries) {
            if (kept > 0 && entries[kept - 1].key == entry.key)
                entries[kept - 1].physicalPart = entry.physicalPart;
            else if (&entries[kept++] != &entry)
                entries[kept - 1] = std::move(entry);
        }
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(kept), entries.end());
        return entries;
    }

private:
    std::vector<Entry> entries;
};

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
        throw PackageOpenFailed(e.what(), e.code());
    }

    FoundParts regular;
    std::unordered_map<std::string, interfaces::IPhysicalPart*> relationship;
    relationship.reserve(physicalParts.size());
    for (interfaces::IPhysicalPart* physicalPart : physicalParts) {
        const std::u16string text = physicalPart->getName();
        const PartName name(text);
        if (name.isRelationshipName()) {
            // For its effects: it must have a content type, and keeps the `Default` of its extension in use.
            findContentType(name, *physicalPart);
            relationship[caselessKey(text)] = physicalPart;
        } else {
            regular.add(caselessKey(text), name, physicalPart);
        }
    }

    const auto takeRelationships = [&relationship](auto& source, const PartName& name) {
        const auto match = relationship.find(caselessKey(name.getRelationshipPartName()));
        if (match == relationship.end())
            return;
        source.setPhysicalRelationshipPart(match->second, false);
        relationship.erase(match);
    };
    PartMap found;
    for (const auto& [key, name, physicalPart] : regular.inOrder()) {
        Part part(this, physicalPart, name, findContentType(name, *physicalPart), openMode);
        takeRelationships(part, name);
        found.emplace_hint(found.end(), name, part);
    }
    takeRelationships(*this, PartName(PackageHelper::getPackageRootURI()));

    parts.swap(found);
    prefixes.reserve(parts.size());
    for (const auto& entry : parts)
        populatePrefixes(entry.first);

    if (!relationship.empty())
        throw InconsistentPackage("Not all relationship parts were matched with regular parts");
}

} // namespace opc::model
