#pragma once

#include "ArchiveDirectory.hpp"
#include "Inflater.hpp"

#include <memory>
#include <string>

namespace opc::physical::zip {

/// An archive open to read.
class ArchiveReader {
public:
    /// Reads the directory.
    ArchiveReader(std::shared_ptr<ByteSource> archive, std::string archivePlace, const ZipOptions& limits);

    ItemIndex itemCount() const { return static_cast<ItemIndex>(directory.entries.size()); }
    const DirectoryEntry& item(ItemIndex index) const { return directory.entries[index]; }
    const std::string& comment() const { return directory.comment; }
    ByteSource& bytes() const { return *source; }

    /// The size of an item's entry in the directory.
    std::size_t recordSize(ItemIndex index) const;

    /// Reads an item from its start, as far as it reaches and there is room.
    /// @param room  at least 30 bytes, the size of the shortest header
    /// @param got   gets how many bytes were read
    /// @return the size of the local header, in front of the content; it may be more than `room`. Raises if the
    ///     header says anything else than the directory.
    std::size_t readStart(ItemIndex index, unsigned char* buffer, std::size_t room, std::size_t& got) const;

    /// Reads all of `count` bytes that belong to an item.
    void read(ItemIndex index, std::uint64_t offset, unsigned char* buffer, std::size_t count) const;

    /// An inflater at its start: one given back, or a new one.
    std::unique_ptr<Inflater> takeInflater();
    void giveInflater(std::unique_ptr<Inflater> inflater) noexcept { spare = std::move(inflater); }

    /// Raises for an item whose content can't be read.
    [[noreturn]] void failItem(ItemIndex index, const std::string& what) const;

    const std::string& place() const { return where; }
    std::string itemPlace(ItemIndex index) const;

private:
    void checkHeader(ItemIndex index, const unsigned char* header) const;

    std::shared_ptr<ByteSource> source;
    std::string where;
    ArchiveDirectory directory;
    std::unique_ptr<Inflater> spare;
};

} // namespace opc::physical::zip
