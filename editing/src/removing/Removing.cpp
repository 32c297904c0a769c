#include <opc/editing/Removing.hpp>

#include "comparison/NamePattern.hpp"
#include "graph/Reach.hpp"
#include "graph/Targets.hpp"
#include "subject/Names.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <algorithm>

namespace opc::editing {

using model::Package;
using model::Part;
using model::PartName;
using model::Relationship;
using model::RelationshipSource;

namespace {

/// The part whose name is the pattern itself.
const Part* findLiteral(const std::vector<Part>& parts, const std::u16string& pattern) {
    const auto precedes = [](const Part& part, const std::u16string& name) { return part.getName() < name; };
    const auto found = std::lower_bound(parts.begin(), parts.end(), pattern, precedes);
    return found != parts.end() && found->getName() == pattern ? &*found : nullptr;
}

std::vector<std::string> keysOf(const std::vector<Part>& parts) {
    std::vector<std::string> keys;
    keys.reserve(parts.size());
    for (const Part& part : parts)
        keys.push_back(inspection::keyOfName(toUDEString(part.getName().toString())));
    return keys;
}

Reach::Marks choose(const Reach& reach, const std::vector<std::string>& patterns) {
    Reach::Marks chosen = reach.makeMarks();
    const std::vector<Part>& parts = reach.parts();
    std::vector<std::string> keys; // made when the first pattern needs them
    for (const std::string& text : patterns) {
        const std::u16string pattern = toString(text, true);
        bool isMatched = false;
        const auto choosePart = [&](std::size_t part) { isMatched = chosen[part] = true; };
        if (const Part* const literal = findLiteral(parts, pattern)) {
            choosePart(static_cast<std::size_t>(literal - parts.data()));
            continue;
        }
        if (keys.empty())
            keys = keysOf(parts);
        const inspection::NamePattern matching(text);
        for (std::size_t i = 0; i < parts.size(); ++i)
            if (matching.matches(keys[i]))
                choosePart(i);
        if (!isMatched)
            throw aboutPart(toUDEString(pattern),
                            model::PartNotFound("No part found with the name:" + toASCIIString(pattern)));
    }
    return chosen;
}

std::vector<std::size_t> listMarked(const Reach::Marks& marks, bool value = true) {
    std::vector<std::size_t> listed;
    for (std::size_t i = 0; i < marks.size(); ++i)
        if (marks[i] == value)
            listed.push_back(i);
    return listed;
}

/// Adds what only the chosen parts lead to: nothing that stays leads there.
void addCascade(const Reach& reach, Reach::Marks& chosen) {
    Reach::Marks below = reach.makeMarks();
    reach.mark(listMarked(chosen), below, reach.makeMarks());
    Reach::Marks kept = reach.makeMarks();
    reach.mark(reach.fromPackage(), kept, chosen);
    reach.mark(listMarked(below, false), kept, chosen);
    for (std::size_t i = 0; i < chosen.size(); ++i)
        chosen[i] = chosen[i] || (below[i] && !kept[i]);
}

/// Those of sources that stay.
void removeIncoming(Editor& editor, const Reach& reach, const Reach::Marks& chosen) {
    std::vector<PartName> gone;
    for (const std::size_t part : listMarked(chosen))
        gone.push_back(reach.parts()[part].getName());
    const auto isGone = [&gone](const PartName& name) {
        return std::binary_search(gone.begin(), gone.end(), name);
    };
    visitSources(editor.package(), [&](const PartName& name, const RelationshipSource& source) {
        for (const Relationship& relationship : source.getRelationships()) {
            const auto target = targetOf(relationship);
            if (target && isGone(*target) && !isGone(name))
                editor.deleteRelationship(name, relationship.getID());
        }
    });
}

} // namespace

void removeParts(Editor& editor, const std::vector<std::string>& patterns, const RemoveOptions& options) {
    const Reach reach(editor.package());
    Reach::Marks chosen = choose(reach, patterns);
    if (options.cascade)
        addCascade(reach, chosen);
    if (options.incoming)
        removeIncoming(editor, reach, chosen);
    for (const std::size_t part : listMarked(chosen))
        editor.deletePart(reach.parts()[part].getName());
}

} // namespace opc::editing
