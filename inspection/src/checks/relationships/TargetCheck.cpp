#include "checks/relationships/TargetCheck.hpp"

#include "checks/relationships/PackURI.hpp"
#include "checks/relationships/RelationshipKinds.hpp"
#include "checks/relationships/ValueRules.hpp"
#include "checks/signatures/Signatures.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

namespace opc::inspection {

namespace {

std::string inQuotes(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

void checkReference(std::string_view target, bool isExternal, const Place& place, Findings& findings) {
    const URIDefect defect = findURIDefect(target, isExternal);
    if (!defect.what.empty())
        findings.add("M1.28", isExternal ? Severity::Warning : defect.severity, place,
                     "The Target " + inQuotes(target) + " has " + defect.what);
}

void checkExternal(std::string_view target, const Place& place, Findings& findings) {
    checkReference(target, true, place, findings);
    const Reference reference(target);
    if (!equalsCaseless(reference.scheme, "pack"))
        return;
    if (const std::string defect = defectOfPackURI(reference); !defect.empty())
        findings.add("M7.1", place, "The Target " + inQuotes(target) + " " + defect);
}

/// What other rules tell of, by the type, if nothing is there.
bool isToldElsewhere(const Subject& subject, const RelationshipsView& view, const RelationshipView& entry,
                     const Findings& findings) {
    if (subject.isIncomplete(entry.resolved))
        return findings.wants("M2.16");
    if (view.source != "/" && view.sourcePart == nullptr)
        return findings.wants("SEC-34"); // what is left of a part that was taken out
    if (isCoreProperties(entry) && view.source == "/")
        return findings.wants("M4.1");
    if (isThumbnail(entry))
        return findings.wants("M5.1");
    if (leadsToOrigin(entry) && view.source == "/")
        return findings.wants("SEC-72");
    return view.source == "/" && entry.lastSegment() == "officeDocument" && findings.wants("P1-4");
}

void checkInternal(const Subject& subject, const RelationshipsView& view, const RelationshipView& entry,
                   const Place& place, Findings& findings) {
    const std::string_view target = trimmed(entry.target);
    const Reference reference(target);
    if (reference.hasScheme || reference.hasAuthority) {
        findings.add("M1.29", place, "The internal Target " + inQuotes(target) + " leads out of the package");
        return;
    }
    if (keyOfName(entry.resolved) == CONTENT_TYPES_KEY) {
        findings.add("M2.1", place, "The Target is the content types stream");
        return;
    }
    checkReference(target, false, place, findings);
    if (reference.hasFragment && subject.format() == "opc")
        findings.add("O1.6", place, "The internal Target " + inQuotes(target) + " has a fragment");
    if (entry.part != nullptr && entry.part->isRelationships())
        findings.add("M1.25", place, "The Target is the relationships part " + entry.part->name);
    else if (climbsAboveRoot(view.source, target))
        findings.add("SEC-17", place,
                     "The Target " + inQuotes(target) + " leads above the root of the package");
    else if (entry.part == nullptr && !entry.resolved.empty() &&
             !isToldElsewhere(subject, view, entry, findings))
        findings.add("SEC-17", place, "There is no part " + entry.resolved + " where the Target leads");
    else if (reference.hasQuery)
        findings.add("SEC-17", place, "The internal Target " + inQuotes(target) + " has a query");
}

} // namespace

void checkTarget(const Subject& subject, const RelationshipsView& view, const RelationshipView& entry,
                 const Place& place, Findings& findings) {
    const std::string_view target = trimmed(entry.target);
    if (!entry.hasTarget)
        findings.add("M1.28", place, "The relationship has no Target");
    else if (target.empty())
        findings.add("M1.28", Severity::Warning, place, "The Target is empty");
    else if (entry.isExternal)
        checkExternal(target, place, findings);
    else
        checkInternal(subject, view, entry, place, findings);
}

} // namespace opc::inspection
