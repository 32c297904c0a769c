#include "graph/Reach.hpp"

#include "graph/Targets.hpp"

#include <algorithm>

namespace opc::editing {

using model::Part;
using model::PartName;

Reach::Reach(const model::Package& package) {
    for (const Part& part : package.getParts())
        all.push_back(part);
    ofPackage = targetsOf(package);
    for (const Part& part : all)
        ofParts.push_back(targetsOf(part));
}

std::vector<std::size_t> Reach::targetsOf(const model::RelationshipSource& source) const {
    std::vector<std::size_t> targets;
    for (const model::Relationship& relationship : source.getRelationships()) {
        const auto target = targetOf(relationship);
        if (!target)
            continue;
        const auto precedes = [](const Part& part, const PartName& name) { return part.getName() < name; };
        const auto found = std::lower_bound(all.begin(), all.end(), *target, precedes);
        if (found != all.end() && found->getName() == *target)
            targets.push_back(static_cast<std::size_t>(found - all.begin()));
    }
    return targets;
}

void Reach::mark(const std::vector<std::size_t>& starts, Marks& marks, const Marks& closed) const {
    std::vector<std::size_t> open;
    const auto enter = [&](std::size_t part) {
        if (closed[part] || marks[part])
            return;
        marks[part] = true;
        open.push_back(part);
    };
    std::for_each(starts.begin(), starts.end(), enter);
    while (!open.empty()) {
        const std::size_t part = open.back();
        open.pop_back();
        std::for_each(ofParts[part].begin(), ofParts[part].end(), enter);
    }
}

} // namespace opc::editing
