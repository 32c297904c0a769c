#pragma once

#include <zlib.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// Inflates with one state of zlib.
class RawInflater {
public:
    RawInflater();
    RawInflater(const RawInflater&) = delete;
    RawInflater& operator=(const RawInflater&) = delete;
    ~RawInflater();

    /// @param plain  has the size of the result
    void inflate(std::string_view compressed, std::vector<unsigned char>& plain);

private:
    z_stream inflater{};
};

/// The least work of reading an archive: one read for its directory, one for each item, and zlib with one state for
/// all of them. Checks nothing.
class RawArchive {
public:
    struct Item {
        std::string name;
        std::uint16_t method;
        std::uint32_t checksum;
        std::uint64_t compressedSize;
        std::uint64_t size;
        std::uint64_t offset;
    };

    explicit RawArchive(const std::filesystem::path& path);
    RawArchive(const RawArchive&) = delete;
    RawArchive& operator=(const RawArchive&) = delete;
    ~RawArchive();

    const std::vector<Item>& directory() const { return items; }

    /// Valid until the next call, like the result of `content`.
    std::string_view compressedContent(const Item& item);

    std::string_view content(const Item& item);

private:
    void read(std::uint64_t offset, std::size_t count, std::vector<unsigned char>& bytes) const;

    int file;
    std::vector<Item> items;
    std::vector<unsigned char> compressed;
    std::vector<unsigned char> plain;
    std::optional<RawInflater> inflater; // made for the first item that needs it
};

/// Deflates texts with one state, at zlib's default level.
class RawDeflater {
public:
    RawDeflater();
    RawDeflater(const RawDeflater&) = delete;
    RawDeflater& operator=(const RawDeflater&) = delete;
    ~RawDeflater();

    /// @return the number of compressed bytes
    std::size_t deflate(std::string_view text);

private:
    std::vector<unsigned char> compressed;
    z_stream deflater{};
};

} // namespace bench
