#include "checks/container/ContainerChecks.hpp"

#include "hash/TextHash.hpp"
#include "zip/src/ItemKind.hpp"
#include "zip/src/ItemName.hpp"
#include "zip/src/RecordSignatures.hpp"
#include "zip/src/Records.hpp"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace opc::inspection {

using namespace physical::zip;

namespace {

constexpr std::uint16_t AES_METHOD = 99;
/// @return what kind of file the attributes make of an item, if it isn't one that belongs into a package
const char* dangerousKind(const ArchiveItem& item) {
    if (const char* const kind = kindByAttributes(item.externalAttributes, item.name))
        return kind;
    constexpr unsigned UNIX_SYSTEM = 3;
    constexpr unsigned OSX_SYSTEM = 19;
    const unsigned system = item.versionMadeBy >> 8U;
    const bool isUnix = system == UNIX_SYSTEM || system == OSX_SYSTEM;
    return isUnix && (item.externalAttributes >> 16U & 06000U) != 0
               ? "a file that runs with the rights of its owner or group"
               : nullptr;
}

void checkFlags(const ArchiveItem& item, const ItemHeader& header, Findings& findings) {
    constexpr unsigned UNUSED = 0xD7B0; // bits 4, 5, 7 to 10, 12, 14, 15
    if (const unsigned bits = header.flags & UNUSED; bits != 0) {
        std::string list;
        for (unsigned bit = 0; bit < 16; ++bit)
            if ((bits >> bit & 1U) != 0)
                list += (list.empty() ? "" : ", ") + std::to_string(bit);
        findings.add("ZIP-FLAGS", placeOf(item),
                     "Flags of the item that packages don't use are set: bits " + list);
    }
}

void checkMethod(const ArchiveItem& item, const ItemHeader& header, Findings& findings) {
    if ((header.flags & ENCRYPTION_FLAGS) != 0 || header.method == AES_METHOD)
        findings.add("M3.9", placeOf(item), "The item is encrypted");
    else if (header.method != STORE && header.method != DEFLATE)
        findings.add("ZIP-METHOD", placeOf(item),
                     "The item has compression method " + std::to_string(header.method));
}

void checkVersion(const ArchiveItem& item, const ItemHeader& header, Findings& findings) {
    const unsigned version = header.versionNeeded & 0xFFU;
    if (version != 10 && version != 11 && version != 20 && version != 45)
        findings.add("ZIP-VERSION", placeOf(item),
                     "The item needs version " + std::to_string(version / 10) + '.' +
                         std::to_string(version % 10) + " of the ZIP format");
    if (item.local && item.local->versionNeeded != header.versionNeeded)
        findings.add(
            "M3.14", Severity::Warning, placeOf(item),
            "The local header of the item needs another version of the ZIP format than the directory says");
}

/// Whether programs that read the archive from its start may take something in the content for the end of the item.
bool canEndEarlier(const Archive& archive, const ArchiveItem& item) {
    if (!item.local || (item.local->flags & DATA_DESCRIPTOR) == 0 || item.central->method != STORE ||
        !item.dataOffset)
        return false;
    std::vector<unsigned char> block;
    return holdsRecordSignature(item.central->compressedSize, [&](std::uint64_t offset, std::size_t count) {
        block.assign(std::max(block.size(), count), 0);
        archive.read(*item.dataOffset + offset, block.data(), count);
        return block.data();
    });
}

void checkItem(const ArchiveItem& item, Findings& findings) {
    const ItemHeader& header = *item.central;
    checkMethod(item, header, findings);
    checkVersion(item, header, findings);
    checkFlags(item, header, findings);
    constexpr std::size_t MOST = 0xFFFF;
    if (header.name.size() + header.extraFields.size() + item.comment.size() > MOST)
        findings.add("M3.8", placeOf(item),
                     "Name, extra fields and comment of the item have more than 65,535 bytes together");
    if (const char* const kind = dangerousKind(item))
        findings.add("SEC-47", placeOf(item), std::string("The item is ") + kind);
    if (!item.comment.empty())
        findings.add("SEC-51", placeOf(item),
                     "The item has a comment of " + std::to_string(item.comment.size()) + " bytes");
    constexpr std::uint64_t EMPTY_DEFLATE = 2; // bytes
    if (isFolderName(item.name) && (header.size > 0 || header.compressedSize > EMPTY_DEFLATE))
        findings.add("M3.7", placeOf(item), "The item has the name of a folder, and content");
}

} // namespace

void checkItemHeaders(const Subject& subject, Findings& findings) {
    std::unordered_map<std::string_view, const ArchiveItem*, TextHash> names;
    std::size_t growthHints = 0;
    for (const ArchiveItem& item : subject.archive().items()) {
        if (!item.central)
            continue;
        if (!names.emplace(item.central->name, &item).second)
            findings.add("M3.3", placeOf(item), "Another item has the same name");
        checkItem(item, findings);
        if (canEndEarlier(subject.archive(), item))
            findings.add(
                "M3.14", Severity::Warning, placeOf(item),
                "The header of the item doesn't say how long it is, and its content has the mark of its end");
        growthHints += checkExtraFields(item, findings) ? 1 : 0;
    }
    if (growthHints > 0) // mostly each item has one
        findings.add("O1.1", {},
                     std::to_string(growthHints) + (growthHints == 1 ? " item has" : " items have") +
                         " a growth hint");
}

} // namespace opc::inspection
