#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// ZIP archives byte by byte: to make what no library would write, and to look at what ours has written.
namespace opc::test {

using Bytes = std::vector<unsigned char>;

struct RawItem {
    std::string name;
    std::string data;                  ///< as it stands in the archive, compressed or not
    std::uint16_t method = 0;          ///< 0 Store, 8 Deflate
    std::uint16_t flags = 0;           ///< 1 encrypted, 8 data descriptor, 0x800 name in UTF-8
    std::uint32_t size = 0;            ///< uncompressed
    std::uint32_t crc = 0;             ///< of the uncompressed content
    std::uint32_t attributes = 0;      ///< external
    std::uint32_t time = 0x5A21'6000U; ///< date and time as DOS has them
    std::string extra;                 ///< extra fields of the directory
    std::string localExtra;            ///< extra fields of the local header
    bool zip64 = false;                ///< sizes and offset stand in ZIP64 fields
    bool streamed = false;   ///< the local header knows neither sizes nor checksum; a descriptor follows
    int descriptorWidth = 4; ///< bytes for each size there
    bool descriptorIsSigned = true;
    std::string comment;
    std::string inFront; ///< bytes in front of the local header that belong to no item
};

RawItem stored(const std::string& name, const std::string& content);

/// Deflate without compression, as no compressor writes it for text: it shows whether an item was copied or
/// compressed anew.
RawItem oddlyDeflated(const std::string& name, const std::string& content);

/// @param zip64  whether the directory's numbers stand in a ZIP64 record
Bytes makeZip(const std::vector<RawItem>& items, const std::string& comment = {}, bool zip64 = false);

/// The items of an archive in the order of its directory, without what stands in ZIP64 fields. Asserts
/// nothing: the archive must be sound.
std::vector<RawItem> readZip(const Bytes& archive);

const RawItem& itemOf(const std::vector<RawItem>& items, const std::string& name);

} // namespace opc::test
