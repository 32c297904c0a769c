#pragma once

#include <opc/physical/ZipExport.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace opc::physical {

/// What packages that are read one after another hand on to the next: see `ZipOptions::memory`. Packages that one program
/// has written have many relationships parts in common, byte for byte, and these needn't be expanded again. It takes up to
/// 1.2 MiB.
///
/// Use it, and the packages that have it, from one thread at a time.
class OPC_ZIP_EXPORT ReadingMemory {
public:
    /// The largest compressed and expanded size of what is kept, in bytes.
    /// @{
    static constexpr std::size_t MOST_COMPRESSED = 512;
    static constexpr std::size_t MOST_EXPANDED = 4096;
    /// @}

    ReadingMemory();
    ReadingMemory(const ReadingMemory&) = delete;
    ReadingMemory& operator=(const ReadingMemory&) = delete;
    ~ReadingMemory();

    /// @param checksum    that the content should have (CRC-32)
    /// @param compressed  the deflated bytes
    /// @return what these bytes expand to; null if that isn't known, or has another checksum
    const std::string* find(std::uint32_t checksum, std::string_view compressed) const;

    /// Keeps a content in the place of another one. Does nothing if it is too large.
    /// @param content  what the bytes expand to, with this checksum
    void keep(std::uint32_t checksum, std::string_view compressed, std::string_view content);

private:
    struct Item {
        std::uint32_t checksum = 0;
        std::string compressed;
        std::string content;
    };

    static std::size_t placeOf(std::uint32_t checksum);

    std::vector<Item> items;
};

} // namespace opc::physical
