#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// ZIP archives byte by byte: to make archives that no library would write, and to examine those of this library.
namespace opc::test {

using Bytes = std::vector<unsigned char>;

struct RawItem {
    std::string name;
    std::string data;                  ///< as it is in the archive, compressed or not
    std::uint16_t method = 0;          ///< 0 Store, 8 Deflate
    std::uint16_t flags = 0;           ///< 1 encrypted, 8 data descriptor, 0x800 name in UTF-8
    std::uint32_t size = 0;            ///< uncompressed
    std::uint32_t crc = 0;             ///< of the uncompressed content
    std::uint32_t attributes = 0;      ///< external
    std::uint32_t time = 0x5A21'6000U; ///< date and time in the DOS format
    std::string extra;                 ///< extra fields of the directory
    std::string localExtra;            ///< extra fields of the local header
    bool zip64 = false;                ///< sizes and offset are in ZIP64 fields
    bool streamed = false;             ///< the local header lacks sizes and checksum; a descriptor follows
    int descriptorWidth = 4;           ///< the bytes of each size in it
    bool descriptorIsSigned = true;
    std::string comment;
    std::string inFront; ///< bytes in front of the local header that belong to no item

    std::uint16_t versionNeeded = 20;
    std::uint16_t versionMadeBy = 0x0314; ///< 2.0 on Unix
    std::uint16_t disk = 0;
    std::optional<std::uint32_t> packedSize;   ///< if not that of `data`
    std::optional<std::uint32_t> offset;       ///< in the directory, if not where the local header is
    std::function<void(RawItem&)> changeLocal; ///< what the local header and the descriptor say otherwise
    bool listed = true;                        ///< in the directory
    bool present = true;                       ///< with local header and content
};

/// An archive, with what can stand outside its items. Offsets count from its first byte.
struct RawArchive {
    std::vector<RawItem> items;
    std::string comment;
    bool zip64 = false;                          ///< the directory's numbers stand in a ZIP64 record
    std::string inFront;                         ///< of everything
    std::string beforeDirectory;                 ///< behind the last item
    std::string behindDirectory;                 ///< in front of the end records
    std::string behind;                          ///< the end record and its comment
    std::optional<std::uint16_t> count;          ///< that the end record says, if not the number of entries
    std::optional<std::uint32_t> directoryStart; ///< likewise
    std::uint16_t disk = 0;
};

RawItem stored(const std::string& name, const std::string& content);

/// Deflate without compression. No compressor writes that for text, so it shows whether an item was copied or
/// compressed again.
RawItem oddlyDeflated(const std::string& name, const std::string& content);

Bytes makeArchive(const RawArchive& archive);
Bytes makeZip(const std::vector<RawItem>& items, const std::string& comment = {}, bool zip64 = false);

/// The items of an archive in the order of its directory, without the content of ZIP64 fields. Asserts nothing: the
/// archive must be valid.
std::vector<RawItem> readZip(const Bytes& archive);

const RawItem& itemOf(const std::vector<RawItem>& items, const std::string& name);

} // namespace opc::test
