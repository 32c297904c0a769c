#include "checks/Checks.hpp"
#include "checks/DocumentChecks.hpp"
#include "checks/relationships/Reach.hpp"
#include "checks/relationships/RelationshipKinds.hpp"
#include "checks/relationships/TargetCheck.hpp"
#include "checks/relationships/ValueRules.hpp"
#include "checks/signatures/Signatures.hpp"
#include "hash/TextHash.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <algorithm>
#include <string>
#include <unordered_set>

namespace opc::inspection {

namespace {

constexpr std::string_view RELATIONSHIPS_NAMESPACE =
    "http://schemas.openxmlformats.org/package/2006/relationships";

/// Checks one relationships part.
class RelationshipsCheck {
public:
    RelationshipsCheck(const Subject& subject, const RelationshipsView& view, Findings& findings)
        : subject(subject), view(view), findings(findings) {
        place.part = view.part->name;
    }

    void run() {
        checkPart();
        checkDocument(view.document, place, RELATIONSHIPS_NAMESPACE, "Relationships", findings);
        checkForm(view.document, place, findings);
        if (view.document.usesMarkupCompatibility)
            findings.add("O1.7", place, "The relationships part uses markup compatibility");
        for (const RelationshipView& entry : view.entries) {
            Place at = placeAt(place, entry.line, entry.column);
            at.relationship = entry.id;
            checkID(entry, at);
            checkType(entry, at);
            if (checkMode(entry, at))
                checkTarget(subject, view, entry, at, findings);
        }
        checkSingleTypes(view, place, findings);
    }

private:
    void checkPart() {
        if (isRelationshipsName(view.source))
            findings.add("M1.25", place, "A relationships part can't have relationships");
        else if (view.source != "/" && view.sourcePart == nullptr &&
                 !(isLostOrigin() && findings.wants("SEC-72")))
            findings.add("SEC-34", place,
                         "There is no part " + view.source + " that the relationships belong to");
        const ArchiveItem& item = *view.part->items.front();
        if (item.kind != ItemKind::Piece && !hasStandardCase(item.name))
            findings.add("SEC-36", place,
                         "The item's name, " + item.name + ", has another letter case than _rels and .rels");
    }

    /// Whether the missing source is the origin of signatures: another rule tells what is lost with it.
    bool isLostOrigin() const {
        const RelationshipsView* const package = subject.relationshipsOf("/");
        return package != nullptr &&
               std::any_of(
                   package->entries.begin(), package->entries.end(), [this](const RelationshipView& entry) {
                       return leadsToOrigin(entry) && keyOfName(entry.resolved) == keyOfName(view.source);
                   });
    }

    static bool hasStandardCase(std::string_view name) {
        const std::size_t file = name.find_last_of("/\\") + 1;
        constexpr std::string_view FOLDER = "_rels";
        constexpr std::string_view EXTENSION = ".rels";
        return file > FOLDER.size() && name.substr(file - 1 - FOLDER.size(), FOLDER.size()) == FOLDER &&
               name.substr(name.size() - EXTENSION.size()) == EXTENSION;
    }

    void checkID(const RelationshipView& entry, const Place& at) {
        const std::string_view id = trimmed(entry.id);
        if (!entry.hasId)
            findings.add("M1.26", at, "A relationship has no Id");
        else if (!isValidID(id))
            findings.add("M1.26", at, "The Id \"" + entry.id + "\" isn't an xsd:ID");
        else if (!ids.insert(id).second)
            findings.add("M1.26", at, "The Id " + entry.id + " isn't unique");
    }

    void checkType(const RelationshipView& entry, const Place& at) {
        const std::string_view type = trimmed(entry.type);
        if (type.empty())
            findings.add("M1.27", at, entry.hasType ? "The Type is empty" : "The relationship has no Type");
        else if (const std::string defect = defectOfType(type); !defect.empty())
            findings.add("M1.27", Severity::Warning, at, defect);
    }

    /// @return whether it tells where the target is
    bool checkMode(const RelationshipView& entry, const Place& at) {
        if (entry.targetMode.empty() || entry.targetMode == "Internal" || entry.targetMode == "External")
            return true;
        findings.add("M1.20", at,
                     "The TargetMode is " + entry.targetMode + " instead of Internal or External");
        return entry.isExternal || equalsCaseless(entry.targetMode, "Internal");
    }

    const Subject& subject;
    const RelationshipsView& view;
    Findings& findings;
    Place place;
    std::unordered_set<std::string_view, TextHash> ids;
};

/// Relationships parts have the type of relationships, and no other part has it.
void checkTypesOfParts(const Subject& subject, Findings& findings) {
    bool isDefaultTold = false;
    for (const PartView& part : subject.parts()) {
        const bool hasType =
            equalsCaseless(part.mediaType(), "application/vnd.openxmlformats-package.relationships+xml");
        if (part.typeFrom == PartView::TypeFrom::Nothing || hasType == part.isRelationships())
            continue;
        Place place;
        place.part = part.name;
        if (hasType) {
            findings.add("M1.30b", place, "The part has the type of relationships, but not a name of them");
        } else if (part.typeFrom == PartView::TypeFrom::Override || !isDefaultTold) {
            isDefaultTold = isDefaultTold || part.typeFrom == PartView::TypeFrom::Default;
            findings.add("M1.30", place, "The relationships part has the type " + part.contentType);
        }
    }
}

} // namespace

void checkRelationships(const Subject& subject, Findings& findings) {
    checkTypesOfParts(subject, findings);
    for (const RelationshipsView& view : subject.relationships())
        RelationshipsCheck(subject, view, findings).run();
    checkReach(subject, findings);
}

} // namespace opc::inspection
