#include "ArchiveReader.hpp"

#include "ExtraFields.hpp"
#include "Failure.hpp"
#include "Records.hpp"

#include <algorithm>
#include <array>
#include <cerrno>

namespace opc::physical::zip {

namespace {

/// Whether a local header's numbers are those of the directory. One that was written before the content may
/// have nothing there yet.
bool hasNumbersOf(const DirectoryEntry& entry, const unsigned char* header, const unsigned char* extra) {
    const bool early = (read16(header + 6) & DATA_DESCRIPTOR) != 0;
    std::uint64_t compressedSize = read32(header + 18);
    std::uint64_t size = read32(header + 22);
    Zip64Field field(extra, read16(header + 28));
    if (!field.resolve(size) || !field.resolve(compressedSize))
        return early;
    const auto agrees = [early](std::uint64_t local, std::uint64_t directory) {
        return local == directory || (early && local == 0);
    };
    return agrees(read32(header + 14), entry.crc) && agrees(size, entry.size) &&
           agrees(compressedSize, entry.compressedSize);
}

} // namespace

ArchiveReader::ArchiveReader(std::shared_ptr<ByteSource> archive, std::string archivePlace,
                             const ZipOptions& limits)
    : source(std::move(archive)), where(std::move(archivePlace)),
      directory(readDirectory(*source, where, limits)) {
}

std::uint64_t ArchiveReader::contentOffset(ItemIndex index) const {
    const DirectoryEntry& entry = item(index);
    const std::string& name = entry.storedName();
    std::array<unsigned char, LOCAL_HEADER_SIZE> header{};
    read(index, entry.offset, header.data(), header.size());
    if (read32(header.data()) != LOCAL_HEADER)
        failItem(index, "no local header where the directory says");
    const std::size_t nameSize = read16(&header[26]);
    std::vector<unsigned char> variable(nameSize + read16(&header[28]));
    const std::uint64_t content = entry.offset + header.size() + variable.size();
    if (content + entry.compressedSize > entry.end)
        failItem(index, "it reaches into what lies behind it");
    read(index, entry.offset + header.size(), variable.data(), variable.size());
    if (nameSize != name.size() ||
        !std::equal(name.begin(), name.end(), variable.begin(),
                    [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; }))
        failItem(index, "its local header has another name");
    if (read16(&header[8]) != entry.method || ((read16(&header[6]) ^ entry.flags) & ENCRYPTED) != 0 ||
        !hasNumbersOf(entry, header.data(), variable.data() + nameSize))
        failItem(index, "its local header differs from the directory");
    return content;
}

void ArchiveReader::read(ItemIndex index, std::uint64_t offset, unsigned char* buffer,
                         std::size_t count) const {
    std::size_t got = 0;
    if (const int error = source->readAt(offset, buffer, count, got))
        failSystem(itemPlace(index), "can't read", error);
    if (got != count)
        failItem(index, "the archive has been cut off");
}

std::unique_ptr<Inflater> ArchiveReader::takeInflater() {
    if (!spare)
        return std::make_unique<Inflater>();
    spare->restart();
    return std::move(spare);
}

void ArchiveReader::failItem(ItemIndex index, const std::string& what) const {
    fail(itemPlace(index), "can't read: " + what, EBADMSG);
}

std::string ArchiveReader::itemPlace(ItemIndex index) const {
    return zip::itemPlace(where, item(index).name);
}

} // namespace opc::physical::zip
