#include "checks/container/ContainerChecks.hpp"

#include "checks/Checks.hpp"

#include <algorithm>

namespace opc::inspection {

bool hasFault(const Archive& archive, std::string_view rule) {
    return std::any_of(archive.faults().begin(), archive.faults().end(),
                       [rule](const ArchiveFault& fault) { return fault.rule == rule; });
}

Place placeOf(const ArchiveItem& item) {
    Place place;
    (item.partName.empty() ? place.item : place.part) = item.partName.empty() ? item.name : item.partName;
    if (item.local) // otherwise the directory may lead anywhere
        place.offset = item.headerOffset;
    return place;
}

bool lacksContentTypesAlone(const Subject& subject) {
    return subject.detectedFormat().name == "zip" && subject.relationshipsOf("/") != nullptr;
}

void checkContainer(const Subject& subject, Findings& findings) {
    checkKindOfFile(subject, findings);
    if (!subject.archive().isZip() && subject.detectedFormat().name != "cut-off")
        return;
    checkRecords(subject, findings);
    checkItemHeaders(subject, findings);
    checkPieces(subject, findings);
    tellWriter(subject, findings);
}

void checkKindOfFile(const Subject& subject, Findings& findings) {
    const Format& format = subject.detectedFormat();
    if (format.isPackage || (lacksContentTypesAlone(subject) && findings.wants("M3.10")))
        return;
    if (format.isEncrypted)
        findings.add("SEC-45", {}, "The document is encrypted: nothing in it can be checked");
    else if (format.name == "zip" && findings.wants("SEC-50") && hasFault(subject.archive(), "SEC-50"))
        return; // by another end record it may be one
    else if (format.name != "cut-off")
        findings.add("SEC-57", {}, "The file is no package: " + format.description);
    else if (!hasFault(subject.archive(), "M3.16"))
        findings.add("M3.16", {}, "The archive has no end record: it is cut off");
}

} // namespace opc::inspection
