#pragma once

#include "package/PartKeys.hpp"

#include <opc/interfaces/IPhysicalPart.hpp>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace opc::model {

/// The relationships parts of a store, until their sources take them.
class RelationshipsParts {
public:
    RelationshipsParts(std::size_t count, PartKeys& keys) : keys(keys) { parts.reserve(count); }

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
                [](const Found& part, std::string_view sought) { return part.key < sought; });
        if (next == parts.end() || next->key != path)
            return nullptr;
        return std::exchange((next++)->physicalPart, nullptr);
    }

    /// A relationships part that no source has taken; null if there is none.
    const interfaces::IPhysicalPart* findOrphan() const {
        const auto left = std::find_if(parts.begin(), parts.end(),
                                       [](const Found& part) { return part.physicalPart != nullptr; });
        return left != parts.end() ? left->physicalPart : orphan;
    }

private:
    struct Found {
        std::string_view key; ///< of its source's path
        interfaces::IPhysicalPart* physicalPart;
    };

    PartKeys& keys;
    std::vector<Found> parts;
    std::vector<Found>::iterator next = parts.end();
    const interfaces::IPhysicalPart* orphan = nullptr; // one that can't have a source
};

} // namespace opc::model
