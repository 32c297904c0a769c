#include <opc/editing/Cleaning.hpp>

#include <opc/editing/Editor.hpp>

#include "hash/TextHash.hpp"
#include "subject/Names.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Package.hpp>

#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace opc::editing {

using model::Package;
using model::Part;
using model::PartName;
using model::Relationship;
using model::RelationshipSource;
using model::TargetMode;

namespace {

constexpr std::u16string_view CORE[] = {
    u"http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties",
    u"http://schemas.openxmlformats.org/officedocument/2006/relationships/metadata/core-properties",
    u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/metadata/core-properties",
};
constexpr std::u16string_view EXTENDED[] = {
    u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/extended-properties",
    u"http://purl.oclc.org/ooxml/officeDocument/relationships/extendedProperties",
};
constexpr std::u16string_view CUSTOM[] = {
    u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/custom-properties",
    u"http://purl.oclc.org/ooxml/officeDocument/relationships/customProperties",
};
constexpr std::u16string_view THUMBNAIL[] = {
    u"http://schemas.openxmlformats.org/package/2006/relationships/metadata/thumbnail",
};

/// The part that an internal relationship leads to; nothing if its target is no part name.
std::optional<PartName> internalTargetOf(const Relationship& relationship) {
    if (relationship.getTargetMode() == TargetMode::External)
        return std::nullopt;
    try {
        return PartName(relationship.getTargetURI().toString());
    } catch (const Exception&) {
        return std::nullopt;
    }
}

std::string keyOf(const PartName& name) {
    return inspection::toLowerASCII(toUDEString(name.toString()));
}

class Cleaner {
public:
    Cleaner(Editor& editor, const CleaningOptions& options) : editor(editor) {
        choose(options.core, CORE);
        choose(options.extended, EXTENDED);
        choose(options.custom, CUSTOM);
        choose(options.thumbnails, THUMBNAIL);
    }

    void run() {
        const Package& package = editor.package();
        look(PartName(u"/"), package);
        for (const Part& part : package.getParts())
            look(part.getName(), part);
        for (const auto& [source, id] : relationships)
            editor.deleteRelationship(source, id);
        for (const PartName& target : targets)
            if (uses[keyOf(target)] == 0 && editor.package().hasPart(target))
                editor.deletePart(target);
    }

private:
    template <std::size_t N>
    void choose(bool isChosen, const std::u16string_view (&kind)[N]) {
        if (isChosen)
            types.insert(std::begin(kind), std::end(kind));
    }

    /// Counts the other relationships that lead to each part.
    void look(const PartName& source, const RelationshipSource& relationshipsOf) {
        for (const Relationship& relationship : relationshipsOf.getRelationships()) {
            const std::optional<PartName> target = internalTargetOf(relationship);
            if (types.count(relationship.getType()) == 0) {
                if (target)
                    ++uses[keyOf(*target)];
                continue;
            }
            relationships.emplace_back(source, relationship.getID());
            if (target)
                targets.push_back(*target);
        }
    }

    Editor& editor;
    std::unordered_set<std::u16string_view, TextHash> types;
    std::vector<std::pair<PartName, std::u16string>> relationships; ///< to be taken out
    std::vector<PartName> targets;
    std::unordered_map<std::string, std::size_t, TextHash> uses; ///< of parts, by other relationships
};

} // namespace

void clean(Editor& editor, const CleaningOptions& options) {
    Cleaner(editor, options).run();
}

std::vector<inspection::Finding> findMetadata(const inspection::Archive& archive,
                                              const std::vector<Change>& changes,
                                              const physical::ZipOptions& limits) {
    inspection::InspectionOptions options;
    options.limits = limits;
    for (const char* const rule : {"SEC-58", "SEC-60", "SEC-61", "SEC-62", "SEC-63", "SEC-64", "SEC-65",
                                   "SEC-66", "SEC-67", "SEC-68", "SEC-30"})
        options.only.emplace_back(rule);
    std::unordered_set<std::string, TextHash> gone;
    for (const Change& change : changes) {
        if (change.kind == Change::Kind::PartRemoved)
            gone.insert(inspection::keyOfName(change.place));
        if (change.kind == Change::Kind::RelationshipRemoved)
            gone.insert(inspection::keyOfName(change.place) + '#' + change.name);
    }
    std::vector<inspection::Finding> found = inspect(archive, options).findings;
    const auto isGone = [&gone](const inspection::Finding& finding) {
        const std::string& part = finding.place.part;
        if (!finding.place.relationship.empty() && inspection::isRelationshipsName(part) &&
            gone.count(inspection::keyOfName(inspection::sourceOfRelationships(part)) + '#' +
                       finding.place.relationship) != 0)
            return true;
        return gone.count(inspection::keyOfName(part)) != 0;
    };
    found.erase(std::remove_if(found.begin(), found.end(), isGone), found.end());
    return found;
}

} // namespace opc::editing
