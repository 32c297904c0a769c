#include "comparison/MovedParts.hpp"

#include "comparison/PackageContents.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <map>
#include <set>

namespace opc::inspection {

namespace {

using Kind = ContentDifference::Kind;
using Sizes = std::set<std::uint64_t>;

Sizes sizesOf(const std::vector<ContentDifference>& parts, Kind kind) {
    Sizes sizes;
    for (const ContentDifference& part : parts)
        if (part.kind == kind)
            sizes.insert((part.now ? part.now : part.before)->size);
    sizes.erase(0);
    return sizes;
}

/// Those of one kind that can have the content of another, by their digests.
std::multimap<std::string, ContentDifference*> candidates(std::vector<ContentDifference>& parts, Kind kind,
                                                          const Sizes& sizes) {
    std::multimap<std::string, ContentDifference*> found;
    for (ContentDifference& part : parts) {
        const ContentVersion& version = part.now ? *part.now : *part.before;
        if (part.kind != kind || sizes.count(version.size) == 0)
            continue;
        try {
            found.emplace(digestOf(version), &part);
        } catch (const Exception&) {
            // What can't be read isn't recognised.
        }
    }
    return found;
}

void join(ContentDifference& removed, ContentDifference& added) {
    added.kind = Kind::Moved;
    added.before.swap(removed.before);
    added.hasOtherType = keyOfType(added.before->contentType) != keyOfType(added.now->contentType);
}

} // namespace

std::vector<std::pair<std::string, std::string>> joinMoves(std::vector<ContentDifference>& parts) {
    std::vector<std::pair<std::string, std::string>> names;
    auto removed = candidates(parts, Kind::Removed, sizesOf(parts, Kind::Added));
    if (removed.empty())
        return names;
    for (const auto& [digest, part] : candidates(parts, Kind::Added, sizesOf(parts, Kind::Removed)))
        if (const auto found = removed.find(digest); found != removed.end()) {
            join(*found->second, *part);
            names.emplace_back(part->before->name, part->now->name);
            removed.erase(found);
        }
    const auto isJoined = [](const ContentDifference& part) { return !part.before && !part.now; };
    parts.erase(std::remove_if(parts.begin(), parts.end(), isJoined), parts.end());
    return names;
}

} // namespace opc::inspection
