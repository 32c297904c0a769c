#pragma once

#include <zlib.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// Inflates with one state.
class RawInflater {
public:
    RawInflater();
    RawInflater(const RawInflater&) = delete;
    RawInflater& operator=(const RawInflater&) = delete;
    ~RawInflater();

    /// @param plain  of the size that comes out
    void inflate(std::string_view compressed, std::vector<unsigned char>& plain);

private:
    z_stream inflater{};
};

/// The least that reading an archive can cost: one read of its directory, one of each item, and zlib with one state
/// for all of them. Nothing is checked.
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

    /// Good until the next call, as that of `content` is.
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

/// Deflates texts with one state, at zlib's own level.
class RawDeflater {
public:
    RawDeflater();
    RawDeflater(const RawDeflater&) = delete;
    RawDeflater& operator=(const RawDeflater&) = delete;
    ~RawDeflater();

    /// @return how many bytes came out
    std::size_t deflate(std::string_view text);

private:
    std::vector<unsigned char> compressed;
    z_stream deflater{};
};

} // namespace bench
