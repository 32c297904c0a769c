#include <opc/editing/Removing.hpp>

#include "graph/Reach.hpp"
#include "graph/Targets.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace opc::editing {

using model::Package;
using model::Part;
using model::PartName;

namespace {

/// Programs find the parts of these packages by markup, or by their names.
/// @{

constexpr std::u16string_view RELATIONSHIP_TYPES[] = {
    u"http://schemas.microsoft.com/xps/2005/06/fixedrepresentation",
    u"http://schemas.openxps.org/oxps/v1.0/fixedrepresentation",
    u"http://schemas.microsoft.com/packaging/2010/07/manifest"};
constexpr const char16_t* PARTS[] = {u"/AppxMetadata/AppxBundleManifest.xml", u"/AppxManifest.xml",
                                     u"/extension.vsixmanifest"};

bool needsNoRelationships(const Package& package) {
    const auto relationships = package.getRelationships();
    return std::any_of(relationships.begin(), relationships.end(),
                       [](const model::Relationship& relationship) {
                           return std::find(std::begin(RELATIONSHIP_TYPES), std::end(RELATIONSHIP_TYPES),
                                            relationship.getType()) != std::end(RELATIONSHIP_TYPES);
                       }) ||
           std::any_of(std::begin(PARTS), std::end(PARTS),
                       [&package](const char16_t* name) { return package.hasPart(PartName(name)); });
}

/// @}

void throwIfUnread(const Package& package) {
    visitSources(package, [](const PartName& name, const model::RelationshipSource& source) {
        if (source.hasUnreadRelationships())
            throw model::InvalidRelationshipContent("In " + toASCIIString(name.getRelationshipPartName()) +
                                                    ": relationships that weren't read may lead to any part");
    });
}

} // namespace

std::size_t collectUnreachable(Editor& editor) {
    Package& package = editor.package();
    if (needsNoRelationships(package))
        throw Exception(
            "Programs find parts of such a package without relationships, so that it can't be said which are "
            "in use");
    throwIfUnread(package);
    const Reach reach(package);
    std::vector<std::size_t> starts = reach.fromPackage();
    for (std::size_t i = 0; i < reach.parts().size(); ++i) {
        const std::string name = toUDEString(reach.parts()[i].getName().toString());
        if (editor.signatures().sign(name) || editor.signatures().consistOf(name))
            starts.push_back(i);
    }
    Reach::Marks kept = reach.makeMarks();
    reach.mark(starts, kept, reach.makeMarks());
    std::size_t removed = 0;
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (kept[i])
            continue;
        editor.deletePart(reach.parts()[i].getName());
        ++removed;
    }
    return removed;
}

} // namespace opc::editing
