#include "checks/relationships/Reach.hpp"

#include "checks/relationships/RelationshipKinds.hpp"

#include <algorithm>
#include <unordered_map>

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
    return std::any_of(
        subject.relationships().begin(), subject.relationships().end(), [](const RelationshipsView& view) {
            const DocumentState& document = view.document;
            return !document.failure.empty() || (view.entries.empty() && !document.faults.empty());
        });
}

void checkUnreached(const Subject& subject, Findings& findings) {
    if (!findings.wants("SEC-33") || needsNoRelationships(subject.format()) || hasUnreadDocument(subject))
        return;
    for (const PartView& part : subject.parts()) {
        if (part.isRelationships() || part.typeFrom == PartView::TypeFrom::Nothing || subject.isReached(part))
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
