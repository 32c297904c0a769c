#include "format/Ole2Directory.hpp"

#include "zip/src/Records.hpp"

#include <opc/core/Text.hpp>

#include <array>

namespace opc::inspection {

using physical::zip::read16;
using physical::zip::read32;

namespace {

constexpr std::size_t HEADER_SIZE = 512;
constexpr std::size_t ENTRY_SIZE = 128;
constexpr std::uint32_t LAST_SECTOR = 0xFFFFFFFA; ///< what is higher marks an end

/// How many sectors of the directory are read: what tells the format stands among the first entries.
constexpr int MOST_SECTORS = 64;

class Reader {
public:
    explicit Reader(const Archive& file) : file(file) {}

    std::vector<std::string> read();

private:
    bool readSector(std::uint32_t sector, std::vector<unsigned char>& bytes) const {
        return file.read((std::uint64_t{sector} + 1) << shift, bytes.data(), bytes.size()) == bytes.size();
    }
    std::uint32_t behind(std::uint32_t sector) const;
    void takeNames(const std::vector<unsigned char>& directory, std::vector<std::string>& names) const;

    const Archive& file;
    std::array<unsigned char, HEADER_SIZE> header{};
    unsigned shift = 9;
};

std::vector<std::string> Reader::read() {
    std::vector<std::string> names;
    if (file.read(0, header.data(), header.size()) != header.size())
        return names;
    shift = read16(header.data() + 30);
    if (shift != 9 && shift != 12)
        return names;
    std::vector<unsigned char> bytes(std::size_t{1} << shift);
    std::uint32_t sector = read32(header.data() + 48);
    for (int i = 0; i < MOST_SECTORS && sector < LAST_SECTOR && readSector(sector, bytes); ++i) {
        takeNames(bytes, names);
        sector = behind(sector);
    }
    return names;
}

/// The next sector of a chain. The table of chains is in the sectors that the header lists.
std::uint32_t Reader::behind(std::uint32_t sector) const {
    constexpr std::size_t LISTED = 109;
    const std::size_t perSector = (std::size_t{1} << shift) / 4;
    const std::size_t table = sector / perSector;
    if (table >= LISTED)
        return LAST_SECTOR;
    const std::uint64_t place = ((std::uint64_t{read32(header.data() + 76 + 4 * table)} + 1) << shift) +
                                4 * std::uint64_t{sector % perSector};
    std::array<unsigned char, 4> next{};
    return file.read(place, next.data(), next.size()) == next.size() ? read32(next.data()) : LAST_SECTOR;
}

void Reader::takeNames(const std::vector<unsigned char>& directory, std::vector<std::string>& names) const {
    for (std::size_t start = 0; start + ENTRY_SIZE <= directory.size(); start += ENTRY_SIZE) {
        const unsigned char* const entry = directory.data() + start;
        const std::size_t size = read16(entry + 64); // in bytes, with a zero at the end
        std::u16string name;
        for (std::size_t i = 0; i + 3 < size && i < 62; i += 2)
            name += static_cast<char16_t>(read16(entry + i));
        if (!name.empty())
            names.push_back(toUDEString(name));
    }
}

} // namespace

std::vector<std::string> readOle2Directory(const Archive& file) {
    return Reader(file).read();
}

} // namespace opc::inspection
