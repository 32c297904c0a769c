#include "RawArchive.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace bench {

namespace {

template <typename Number>
Number numberAt(const unsigned char* place) {
    Number number = 0;
    std::memcpy(&number, place, sizeof number); // little-endian, like this machine
    return number;
}

constexpr std::size_t END_SIZE = 22;
constexpr std::size_t ENTRY_SIZE = 46;
constexpr std::size_t HEADER_SIZE = 30;
constexpr std::size_t TAIL_SIZE = END_SIZE + 20 + 56; // with the ZIP64 records, if there are any

void require(bool success, const char* what) {
    if (!success)
        throw std::runtime_error(what);
}

/// The last end record, with any comment.
const unsigned char* findEnd(const std::vector<unsigned char>& tail) {
    constexpr std::string_view SIGNATURE = "PK\5\6";
    const std::string_view text(reinterpret_cast<const char*>(tail.data()), tail.size());
    const std::size_t place = text.rfind(SIGNATURE);
    require(place != std::string_view::npos && text.size() - place >= END_SIZE, "no end record");
    return tail.data() + place;
}

RawArchive::Item readEntry(const unsigned char* entry, std::size_t nameSize) {
    RawArchive::Item item{std::string(reinterpret_cast<const char*>(entry) + ENTRY_SIZE, nameSize),
                          numberAt<std::uint16_t>(entry + 10),
                          numberAt<std::uint32_t>(entry + 16),
                          numberAt<std::uint32_t>(entry + 20),
                          numberAt<std::uint32_t>(entry + 24),
                          numberAt<std::uint32_t>(entry + 42)};
    const unsigned char* large =
        entry + ENTRY_SIZE + nameSize + 4; // the ZIP64 field comes first, if there is one
    for (std::uint64_t* number : {&item.size, &item.compressedSize, &item.offset})
        if (*number == 0xFFFFFFFF) {
            *number = numberAt<std::uint64_t>(large);
            large += sizeof *number;
        }
    return item;
}

} // namespace

RawArchive::RawArchive(const std::filesystem::path& path) : file(::open(path.c_str(), O_RDONLY)) {
    require(file >= 0, "no archive");
    struct stat status {};
    ::fstat(file, &status);
    std::vector<unsigned char> bytes;
    const auto size = static_cast<std::uint64_t>(status.st_size);
    const auto tailSize = static_cast<std::size_t>(std::min<std::uint64_t>(size, TAIL_SIZE));
    read(size - tailSize, tailSize, bytes);
    const unsigned char* end = findEnd(bytes);
    auto count = static_cast<std::uint64_t>(numberAt<std::uint16_t>(end + 10));
    std::uint64_t length = numberAt<std::uint32_t>(end + 12);
    std::uint64_t offset = numberAt<std::uint32_t>(end + 16);
    if (count == 0xFFFF || length == 0xFFFFFFFF || offset == 0xFFFFFFFF) {
        const unsigned char* large = end - 20 - 56;
        count = numberAt<std::uint64_t>(large + 32);
        length = numberAt<std::uint64_t>(large + 40);
        offset = numberAt<std::uint64_t>(large + 48);
    }
    read(offset, length, bytes);
    items.reserve(count);
    for (const unsigned char* entry = bytes.data(); items.size() < count;) {
        const auto nameSize = numberAt<std::uint16_t>(entry + 28);
        items.push_back(readEntry(entry, nameSize));
        entry +=
            ENTRY_SIZE + nameSize + numberAt<std::uint16_t>(entry + 30) + numberAt<std::uint16_t>(entry + 32);
    }
}

RawArchive::~RawArchive() {
    ::close(file);
}

void RawArchive::read(std::uint64_t offset, std::size_t count, std::vector<unsigned char>& bytes) const {
    bytes.resize(count);
    require(::pread(file, bytes.data(), count, static_cast<off_t>(offset)) == static_cast<ssize_t>(count),
            "cut off");
}

std::string_view RawArchive::compressedContent(const Item& item) {
    // A local header can have longer extra fields than the directory, so this reads some bytes more.
    constexpr std::size_t ROOM = 64;
    const std::size_t longest = HEADER_SIZE + item.name.size() + ROOM;
    read(item.offset, longest + item.compressedSize, compressed);
    const std::size_t header =
        HEADER_SIZE + numberAt<std::uint16_t>(&compressed[26]) + numberAt<std::uint16_t>(&compressed[28]);
    if (header > longest)
        read(item.offset, header + item.compressedSize, compressed);
    return {reinterpret_cast<const char*>(compressed.data()) + header, item.compressedSize};
}

std::string_view RawArchive::content(const Item& item) {
    const std::string_view data = compressedContent(item);
    if (item.method == 0 || item.size == 0)
        return data.substr(0, item.size);
    if (!inflater)
        inflater.emplace();
    plain.resize(item.size);
    inflater->inflate(data, plain);
    return {reinterpret_cast<const char*>(plain.data()), plain.size()};
}

RawInflater::RawInflater() {
    require(inflateInit2(&inflater, -MAX_WBITS) == Z_OK, "no inflater");
}

RawInflater::~RawInflater() {
    inflateEnd(&inflater);
}

void RawInflater::inflate(std::string_view compressed, std::vector<unsigned char>& plain) {
    inflateReset(&inflater);
    inflater.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(compressed.data()));
    inflater.avail_in = static_cast<unsigned>(compressed.size());
    inflater.next_out = plain.data();
    inflater.avail_out = static_cast<unsigned>(plain.size());
    require(::inflate(&inflater, Z_FINISH) == Z_STREAM_END, "not deflated");
}

RawDeflater::RawDeflater() {
    require(deflateInit2(&deflater, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) ==
                Z_OK,
            "no deflater");
}

RawDeflater::~RawDeflater() {
    deflateEnd(&deflater);
}

std::size_t RawDeflater::deflate(std::string_view text) {
    compressed.resize(deflateBound(&deflater, text.size()));
    deflateReset(&deflater);
    deflater.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(text.data()));
    deflater.avail_in = static_cast<unsigned>(text.size());
    deflater.next_out = compressed.data();
    deflater.avail_out = static_cast<unsigned>(compressed.size());
    require(::deflate(&deflater, Z_FINISH) == Z_STREAM_END, "not deflated");
    return deflater.total_out;
}

} // namespace bench
