#include "checks/relationships/Reach.hpp"

#include "checks/OfficeFormats.hpp"
#include "checks/relationships/RelationshipKinds.hpp"
#include "checks/signatures/Signatures.hpp"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace opc::inspection {

namespace {

/// Formats whose parts are found by other means than relationships: by markup, or by their names.
bool needsNoRelationships(std::string_view format) {
    constexpr std::string_view FORMATS[] = {"appx",  "appxbundle", "msix", "msixbundle",
                                            "nupkg", "vsix",       "xps",  "oxps"};
    return std::find(std::begin(FORMATS), std::end(FORMATS), format) != std::end(FORMATS);
}

/// What a document that can't be read leads to is unknown.
bool hasUnreadDocument(const Subject& subject) {
    return std::any_of(subject.relationships().begin(), subject.relationships().end(), isUnread);
}

/// Whether other rules tell that nothing leads to the part.
bool isToldElsewhere(const Subject& subject, const PartView& part, const Findings& findings) {
    const std::string type = part.mediaType();
    return subject.findPart(part.name) != &part || // [M1.12], [M2.11], [M3.3]
           (isMainType(type) && isOfficeMediaType(type) && subject.mainPart() == nullptr &&
            findings.wants("P1-4")) ||
           (isSignatureType(type) && findings.wants("M6.3")) ||
           (isCertificateType(type) && findings.wants("M6.4"));
}

/// Those that relationships without a source lead to: another rule tells of the source.
std::unordered_set<const PartView*> findTargetsOfOrphans(const Subject& subject) {
    std::unordered_set<const PartView*> targets;
    for (const RelationshipsView& view : subject.relationships())
        if (view.source != "/" && view.sourcePart == nullptr)
            for (const RelationshipView& entry : view.entries)
                targets.insert(entry.part);
    return targets;
}

void checkUnreached(const Subject& subject, Findings& findings) {
    if (!findings.wants("SEC-33") || needsNoRelationships(subject.format()) || hasUnreadDocument(subject))
        return;
    const std::unordered_set<const PartView*> told = findTargetsOfOrphans(subject); // [SEC-34]
    for (const PartView& part : subject.parts()) {
        if (part.isRelationships() || part.typeFrom == PartView::TypeFrom::Nothing ||
            subject.isReached(part) || told.count(&part) != 0 || isToldElsewhere(subject, part, findings))
            continue;
        Place place;
        place.part = part.name;
        findings.add("SEC-33", place, "No relationship leads to the part");
    }
}

void checkConflicts(const Subject& subject, Findings& findings) {
    if (!findings.wants("SEC-38"))
        return;
    std::unordered_map<const PartView*, const RelationshipView*> firstOf;
    for (const RelationshipsView& view : subject.relationships())
        for (const RelationshipView& entry : view.entries) {
            if (entry.part == nullptr)
                continue;
            const RelationshipView& first = *firstOf.emplace(entry.part, &entry).first->second;
            if (!areInConflict(first, entry))
                continue;
            Place place;
            place.part = view.part->name;
            place.relationship = entry.id;
            place.line = entry.line;
            place.column = entry.column;
            findings.add("SEC-38", place,
                         "The part " + entry.part->name + " is reached as " +
                             std::string(entry.lastSegment()) + " here and as " +
                             std::string(first.lastSegment()) + " elsewhere");
        }
}

} // namespace

void checkReach(const Subject& subject, Findings& findings) {
    checkUnreached(subject, findings);
    checkConflicts(subject, findings);
}

} // namespace opc::inspection
