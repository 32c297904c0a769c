#include "checks/container/ContainerChecks.hpp"

#include "archive/Ambiguities.hpp"
#include "zip/src/Records.hpp"

#include <algorithm>
#include <array>
#include <set>

namespace opc::inspection {

namespace {

constexpr std::uint32_t SIGNATURE_RECORD = 0x05054B50;
constexpr std::uint32_t ARCHIVE_EXTRA_DATA = 0x08064B50;

Place at(std::uint64_t offset) {
    Place place;
    place.offset = offset;
    return place;
}

std::string bytesOf(std::uint64_t count) {
    return count == 1 ? "1 byte stands" : std::to_string(count) + " bytes stand";
}

bool isAllZeros(const Archive& archive, const ArchiveGap& gap) {
    constexpr std::uint64_t MOST = std::uint64_t{64} << 10; // padding is short
    if (gap.size > MOST)
        return false;
    std::vector<unsigned char> bytes(static_cast<std::size_t>(gap.size));
    bytes.resize(archive.read(gap.offset, bytes.data(), bytes.size()));
    return std::all_of(bytes.begin(), bytes.end(), [](unsigned char byte) { return byte == 0; });
}

/// Records that a package doesn't have look like a gap.
const char* recordAt(const Archive& archive, const ArchiveGap& gap) {
    std::array<unsigned char, 4> start{};
    if (archive.read(gap.offset, start.data(), start.size()) != start.size())
        return nullptr;
    const std::uint32_t signature = physical::zip::read32(start.data());
    return signature == SIGNATURE_RECORD     ? "a digital signature of the ZIP format"
           : signature == ARCHIVE_EXTRA_DATA ? "an archive extra data record"
                                             : nullptr;
}

bool hasFaultIn(const Archive& archive, const ArchiveGap& gap) {
    return std::any_of(archive.faults().begin(), archive.faults().end(), [&gap](const ArchiveFault& fault) {
        return fault.rule == "SEC-50" && fault.offset && *fault.offset >= gap.offset &&
               *fault.offset < gap.offset + gap.size;
    });
}

/// Those whose local header is another's, or in another's content.
std::set<std::size_t> findSharingItems(const Archive& archive) {
    std::set<std::size_t> items;
    for (const ArchiveFault& fault : archive.faults())
        if (fault.rule == "SEC-49" && fault.item)
            items.insert(*fault.item);
    return items;
}

void checkGap(const Archive& archive, const ArchiveGap& gap, Findings& findings) {
    switch (gap.where) {
    case ArchiveGap::BeforeItems:
        return findings.add("SEC-46", at(gap.offset), bytesOf(gap.size) + " before the first item");
    case ArchiveGap::BehindEnd:
        return findings.add("SEC-46", at(gap.offset), bytesOf(gap.size) + " behind the end of the archive");
    default:
        break;
    }
    if (const char* const record = recordAt(archive, gap))
        findings.add("M3.17", at(gap.offset), std::string("The archive has ") + record);
    else if (gap.where == ArchiveGap::BehindDirectory && hasFaultIn(archive, gap))
        return; // the end record in it
    else if (gap.where == ArchiveGap::BehindDirectory)
        findings.add("SEC-50", at(gap.offset),
                     bytesOf(gap.size) +
                         " between the directory and the end record: not all programs find it");
    else if (findings.wants("SEC-48"))
        findings.add("SEC-48", isAllZeros(archive, gap) ? Severity::Info : Severity::Warning, at(gap.offset),
                     bytesOf(gap.size) + " that belong to no item of the archive");
}

/// Only for programs that read records in another way than most.
void checkAmbiguities(const Archive& archive, Findings& findings) {
    for (const physical::zip::Ambiguity& one : archive::findAmbiguities(archive)) {
        if (!one.isHidden)
            continue; // other checks find it
        const bool isOfItem = one.item && *one.item < archive.items().size();
        findings.add("SEC-59", isOfItem ? placeOf(archive.items()[*one.item]) : Place(),
                     std::string(isOfItem ? "The item" : "The archive") +
                         " is another one for some programs: " + one.reason);
    }
}

} // namespace

void checkRecords(const Subject& subject, Findings& findings) {
    const Archive& archive = subject.archive();
    const std::set<std::size_t> sharing =
        findings.wants("SEC-49") ? findSharingItems(archive) : std::set<std::size_t>();
    const bool areEndsTold = findings.wants("SEC-50") && hasFault(archive, "SEC-50");
    for (const ArchiveFault& fault : archive.faults()) {
        if (fault.item ? fault.rule == "M3.14" && sharing.count(*fault.item) != 0
                       : fault.rule == "M3.16" && areEndsTold)
            continue; // it follows
        Place place = fault.item ? placeOf(archive.items()[*fault.item]) : Place();
        if (fault.offset && *fault.offset < archive.size())
            place.offset = fault.offset;
        findings.add(fault.rule, std::move(place), fault.message);
    }
    if (!archive.isZip())
        return;
    for (const ArchiveItem& item : archive.items())
        if (item.kind == ItemKind::Hidden)
            findings.add("SEC-48", placeOf(item),
                         "A hidden item: it has a local header, but the directory doesn't list it");
    for (const ArchiveGap& gap : archive.gaps())
        checkGap(archive, gap, findings);
    if (findings.wants("SEC-59"))
        checkAmbiguities(archive, findings);
    if (const std::string comment = archive.comment(); !comment.empty())
        findings.add("SEC-51", {},
                     "The archive has a comment of " + std::to_string(comment.size()) + " bytes");
}

} // namespace opc::inspection
