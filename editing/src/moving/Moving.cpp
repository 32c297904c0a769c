#include <opc/editing/Moving.hpp>

#include "graph/Targets.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/OutputStream.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace opc::editing {

using model::Package;
using model::Part;
using model::PartName;
using model::Relationship;
using model::RelationshipSource;
using model::URI;

namespace {

std::string nameTextOf(const PartName& name) {
    return toUDEString(name.toString());
}

void copyContent(const Part& from, const Part& to) {
    InputStream& input = from.getInputStream();
    OutputStream& output = to.getOutputStream();
    input.close();
    input.open(); // at the first byte, whoever has read it
    std::vector<unsigned char> block(std::size_t{64} * 1024);
    while (!input.isDone())
        output.write(block.data(), input.read(block.data(), block.size()));
}

/// Moves the part itself.
void carry(Package& package, const PartName& from, const PartName& to) {
    const Part old = package.getPart(from);
    Part moved = package.createPart(to, old.getContentType(), model::StandardPartInfo());
    copyContent(old, moved);
    moved.copyRelationships(old);
    package.deletePart(from);
}

/// Whether one of them is in the way of the other one.
bool areInConflict(const PartName& from, const PartName& to) {
    const std::u16string left = toLowerASCIIString(from.toString());
    const std::u16string right = toLowerASCIIString(to.toString());
    const auto& [shorter, longer] =
        left.size() < right.size() ? std::tie(left, right) : std::tie(right, left);
    return longer == shorter || longer.compare(0, shorter.size() + 1, shorter + u"/") == 0;
}

PartName findFreeName(const Package& package) {
    std::u16string existing;
    for (std::size_t number = 1;; ++number) {
        PartName name(u"/moved-" + toString(std::to_string(number), true));
        if (!package.hasPart(name) && !package.isPartDerivedFromExistingPartName(name, existing))
            return name;
    }
}

/// Behind the path: query and fragment.
std::u16string restOf(const std::u16string& target) {
    const std::size_t end = target.find_first_of(u"?#");
    return end == std::u16string::npos ? std::u16string() : target.substr(end);
}

/// @param from, to  names of which the first isn't that of a part any more
void retargetIncoming(Editor& editor, const PartName& from, const PartName& to) {
    visitSources(editor.package(), [&](const PartName& name, const RelationshipSource& source) {
        for (const Relationship& relationship : source.getRelationships()) {
            const URI written(relationship.getTargetMode() == model::TargetMode::Internal
                                  ? relationship.getTarget()
                                  : std::u16string());
            if (written.getPath().empty()) // outside the package, or the source itself
                continue;
            if (targetOf(relationship) != from)
                continue;
            editor.retarget(name, relationship.getID(), to.toString() + restOf(relationship.getTarget()),
                            model::TargetMode::Internal);
        }
    });
}

} // namespace

void movePart(Editor& editor, const PartName& from, const PartName& to) {
    Package& package = editor.package();
    const PartName name = package.getPart(from).getName();
    if (editor.signatures().consistOf(nameTextOf(name)))
        throw Exception(nameTextOf(name) + " belongs to signatures, which are found by its name");
    if (name.hasText(to.toString()))
        return;
    if (areInConflict(name, to)) {
        const PartName free = findFreeName(package);
        carry(package, name, free);
        carry(package, free, to);
    } else {
        carry(package, name, to);
    }
    Change change{Change::Kind::PartRenamed, nameTextOf(name), {}, {}, {}};
    change.before.text = nameTextOf(name);
    change.after.text = nameTextOf(to);
    editor.record(std::move(change));
    retargetIncoming(editor, name, to);
}

} // namespace opc::editing
