#include "checks/container/ContainerChecks.hpp"

#include "archive/RecordBytes.hpp"
#include "zip/src/ExtraFields.hpp"
#include "zip/src/ItemName.hpp"
#include "zip/src/Records.hpp"

#include <libdeflate.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <utility>

namespace opc::inspection {

using namespace physical::zip;

namespace {

constexpr std::uint16_t AES_FIELD = 0x9901;
constexpr std::uint16_t GROWTH_HINT = 0xA220;
constexpr std::uint16_t GROWTH_HINT_SIGNATURE = 0xA028;
constexpr std::size_t GROWTH_HINT_HEADER = 4;  // signature and size at first
constexpr std::size_t UNICODE_PATH_HEADER = 5; // version and checksum

std::string hexOf(std::uint16_t kind) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%04X", static_cast<unsigned>(kind));
    return text;
}

class FieldChecks {
public:
    FieldChecks(const ArchiveItem& item, Findings& findings) : item(item), findings(findings) {}

    void check(const ItemHeader& header);

    bool hasGrowthHint = false;

private:
    bool hasPath = false;    ///< in this header
    bool hasNumbers = false; ///< in this header

    void checkField(const ExtraField& field, const ItemHeader& header);
    void checkPath(const ExtraField& field, const ItemHeader& header);
    void checkGrowthHint(const ExtraField& field);

    const ArchiveItem& item;
    Findings& findings;
};

void FieldChecks::check(const ItemHeader& header) {
    hasPath = hasNumbers = false;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(header.extraFields.data());
    ExtraFieldWalk walk(bytes, header.extraFields.size());
    for (ExtraField field; walk.next(field);)
        checkField(field, header);
    if (walk.isCutOff(UNICODE_PATH_FIELD))
        findings.add("SEC-52", placeOf(item), "A Unicode Path field of the item is cut off");
    else if (holdsUnknownData(bytes + (header.extraFields.size() - walk.restSize()), walk.restSize()))
        findings.add("SEC-53", placeOf(item), "Data stands behind the extra fields of the item");
}

void FieldChecks::checkField(const ExtraField& field, const ItemHeader& header) {
    constexpr std::size_t FIELD_HEADER = 4;
    const bool holdsData = holdsUnknownData(field.data - FIELD_HEADER, field.size + FIELD_HEADER);
    if (field.kind == STRONG_ENCRYPTION_FIELD || field.kind == AES_FIELD) {
        if ((header.flags & ENCRYPTION_FLAGS) == 0)
            findings.add("M3.9", placeOf(item), "An extra field says that the item is encrypted");
    } else if (field.kind == UNICODE_PATH_FIELD) {
        checkPath(field, header);
    } else if (field.kind == ZIP64_FIELD) {
        if (std::exchange(hasNumbers, true) ||
            hasOtherNumbers(field, header.flags, header.size, header.compressedSize,
                            item.headerOffset.value_or(0)))
            findings.add("M3.14", placeOf(item), "A ZIP64 field of the item has other numbers");
    } else if (field.kind == GROWTH_HINT && field.size >= 2 && read16(field.data) == GROWTH_HINT_SIGNATURE) {
        checkGrowthHint(field);
    } else if (holdsData) {
        const bool isHint = field.kind == GROWTH_HINT;
        findings.add("SEC-53", isHint ? Severity::Warning : Severity::Info, placeOf(item),
                     isHint ? "The growth hint of the item hasn't the signature of one"
                            : "The item has data in an extra field of the unknown kind " + hexOf(field.kind));
    }
}

/// The field counts if its checksum is that of the name in the header; some programs don't ask for that, and take the name
/// in any case.
void FieldChecks::checkPath(const ExtraField& field, const ItemHeader& header) {
    if (field.size < UNICODE_PATH_HEADER)
        return;
    if (std::exchange(hasPath, true))
        return findings.add("SEC-52", placeOf(item), "A header of the item has two Unicode Path fields");
    if (unicodePath(field) == item.name)
        return;
    const bool counts =
        read32(field.data + 1) == ::libdeflate_crc32(0, header.name.data(), header.name.size());
    const std::string name = archive::decodeName(unicodePath(field));
    const bool leadsOut = readItemName(name).kind == ItemName::Kind::Refused;
    findings.add("SEC-52", counts || leadsOut ? Severity::Error : Severity::Warning, placeOf(item),
                 "A Unicode Path field gives the item another name: " + name);
}

/// Room that is filled with one byte, whichever it is, holds nothing.
void FieldChecks::checkGrowthHint(const ExtraField& field) {
    hasGrowthHint = true;
    const unsigned char* const room = field.data + std::min(GROWTH_HINT_HEADER, field.size);
    const unsigned char* const end = field.data + field.size;
    if (std::adjacent_find(room, end, std::not_equal_to<>()) != end)
        findings.add("SEC-53", placeOf(item), "The growth hint of the item is filled with data");
    if (item.hasPieceName && item.pieceNumber > 0)
        findings.add("S3.2", placeOf(item),
                     "The growth hint stands at piece " + std::to_string(item.pieceNumber));
}

} // namespace

/// Those of the local header count where they differ from the directory's.
bool checkExtraFields(const ArchiveItem& item, Findings& findings) {
    FieldChecks checks(item, findings);
    if (!item.central->extraFields.empty())
        checks.check(*item.central);
    if (item.local && !item.local->extraFields.empty() &&
        item.local->extraFields != item.central->extraFields)
        checks.check(*item.local);
    return checks.hasGrowthHint;
}

} // namespace opc::inspection
