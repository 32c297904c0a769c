#include "checks/names/NameChecks.hpp"

#include "checks/container/ContainerChecks.hpp"
#include "subject/Names.hpp"

#include <algorithm>
#include <vector>

namespace opc::inspection {

namespace {

struct Named {
    std::string key;
    const ArchiveItem* item;
};

/// A part with its pieces counts once.
std::vector<Named> namesOfParts(const Subject& subject) {
    std::vector<Named> names;
    for (const ArchiveItem& item : subject.archive().items())
        if (!item.partName.empty() && (!item.hasPieceName || item.pieceNumber == 0))
            names.push_back({keyOfName(item.partName), &item});
    return names;
}

/// Sorts a part right in front of those whose names continue its own.
bool standsBefore(const Named& left, const Named& right) {
    return std::lexicographical_compare(
        left.key.begin(), left.key.end(), right.key.begin(), right.key.end(), [](char a, char b) {
            const auto rank = [](char c) { return c == '/' ? 0 : static_cast<unsigned char>(c) + 1; };
            return rank(a) < rank(b);
        });
}

bool isFolderOf(const std::string& folder, const std::string& name) {
    return name.size() > folder.size() && name[folder.size()] == '/' &&
           name.compare(0, folder.size(), folder) == 0;
}

} // namespace

void checkCollisions(const Subject& subject, Findings& findings) {
    std::vector<Named> names = namesOfParts(subject);
    std::stable_sort(names.begin(), names.end(), standsBefore);
    for (std::size_t i = 1; i < names.size(); ++i) {
        const auto& [key, item] = names[i];
        const auto& [earlierKey, earlier] = names[i - 1];
        const bool isTold = item->central->name == earlier->central->name || // [M3.3]
                            item->hasPieceName != earlier->hasPieceName;     // [M2.11]
        if (key == earlierKey && !isTold)
            findings.add("M1.12", placeOf(*item), "The part has the same name as " + earlier->partName);
        if (isFolderOf(earlierKey, key))
            findings.add("M1.11", placeOf(*earlier),
                         "The name of the part is that of " + item->partName + " without its last segments");
    }
}

} // namespace opc::inspection
