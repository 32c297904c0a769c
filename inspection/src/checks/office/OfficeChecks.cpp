#include "checks/Checks.hpp"

#include "checks/DocumentChecks.hpp"
#include "checks/OfficeFormats.hpp"
#include "checks/relationships/RelationshipKinds.hpp"
#include "external/RelationshipType.hpp"
#include "hash/TextHash.hpp"
#include "subject/Names.hpp"
#include "text/CaselessText.hpp"
#include "text/MessageText.hpp"

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_set>

namespace opc::inspection {

namespace {

bool isInPieces(const PartView& part) {
    return !part.items.empty() && part.items.front()->kind == ItemKind::Piece;
}

void checkPiecesAreUnused(const Subject& subject, Findings& findings) {
    if (!isOfficeFormat(subject.format()) ||
        std::none_of(subject.parts().begin(), subject.parts().end(), isInPieces))
        return;
    std::unordered_set<std::string, TextHash> told; // parts that are there as a whole, too
    if (findings.wants("M2.11"))
        for (const PartView& part : subject.parts())
            if (!isInPieces(part))
                told.insert(keyOfName(part.name));
    for (const PartView& part : subject.parts())
        if (isInPieces(part) && told.count(keyOfName(part.name)) == 0)
            findings.add("P1-1", {part.name}, "The part is stored in pieces");
}

/// A type that says nothing about the format.
bool isPlainType(const std::string& mediaType) {
    return mediaType == "application/xml" || mediaType == "text/xml" ||
           mediaType == "application/octet-stream";
}

/// The relationships of the package that lead to a main part of an office program.
std::vector<const RelationshipView*> mainRelationships(const Subject& subject) {
    std::vector<const RelationshipView*> found;
    if (const RelationshipsView* const package = subject.relationshipsOf("/"))
        for (const RelationshipView& entry : package->entries) {
            const RelationshipType type(entry.type);
            if (type.name == "officedocument" && type.hasKnownBase)
                found.push_back(&entry);
        }
    return found;
}

void checkMainRelationship(const RelationshipView& entry, const std::string& package, Findings& findings) {
    const Place place = placeAt({package, {}, entry.id}, entry.line, entry.column);
    if (entry.isExternal) {
        if (!findings.wants("SEC-13"))
            findings.add("P1-4", place, "The main part lies outside the package: " + shown(entry.target));
    } else if (entry.part == nullptr) {
        findings.add("P1-4", place, "The main part doesn't exist: " + shown(entry.target));
    } else if (!entry.part->contentType.empty() && !isMainType(entry.part->mediaType())) {
        // Others than office programs may use the relationship for formats of their own.
        findings.add("P1-4", isPlainType(entry.part->mediaType()) ? Severity::Error : Severity::Warning,
                     {entry.part->name},
                     "The main part has the type " + shown(entry.part->contentType) +
                         ", which is that of no document");
    }
}

void checkMainPart(const Subject& subject, Findings& findings) {
    const std::vector<const RelationshipView*> main = mainRelationships(subject);
    for (const RelationshipView* entry : main)
        checkMainRelationship(*entry, subject.relationshipsOf("/")->part->name, findings);
    const RelationshipsView* const package = subject.relationshipsOf("/");
    if (!main.empty() || (package != nullptr && isUnread(*package)))
        return;
    for (const PartView& part : subject.parts())
        if (isOfficeMediaType(part.mediaType()) && isMainType(part.mediaType()) && !subject.isReached(part)) {
            findings.add("P1-4", {part.name},
                         "The part is a main part by its type, but no relationship of the package says so");
            return;
        }
}

} // namespace

void checkOffice(const Subject& subject, Findings& findings) {
    checkPiecesAreUnused(subject, findings);
    checkMainPart(subject, findings);
}

} // namespace opc::inspection
