#pragma once

#include "ArchiveDirectory.hpp"
#include "Inflater.hpp"
#include "WholeInflater.hpp"

#include <opc/physical/ZipExport.hpp>

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace opc::physical::zip {

/// An archive open to read.
class OPC_ZIP_EXPORT ArchiveReader {
public:
    /// The most that is taken into memory to expand an item as a whole: of the item, and of its content.
    static constexpr std::uint64_t LARGEST_WHOLE = 256ULL << 10;

    /// Reads the directory, and checks all local headers against it.
    ArchiveReader(std::shared_ptr<ByteSource> archive, std::string archivePlace, const ZipOptions& options);

    /// Reads items whose places are known already: their local headers aren't compared with the entries again.
    /// @param entries  with the end of each item
    ArchiveReader(std::shared_ptr<ByteSource> archive, std::string archivePlace,
                  std::vector<DirectoryEntry> entries);

    ArchiveReader(const ArchiveReader&) = delete;
    ArchiveReader& operator=(const ArchiveReader&) = delete;

    ItemIndex itemCount() const { return static_cast<ItemIndex>(directory.entries.size()); }
    const DirectoryEntry& item(ItemIndex index) const { return directory.entries[index]; }
    const std::string& comment() const { return directory.comment; }
    const std::vector<OtherName>& otherNames() const { return directory.otherNames; }
    const std::vector<UnreadData>& unread() const { return directory.unread; }

    /// How many bytes stand behind all records.
    std::uint64_t bytesBehind() const { return source->size() - directory.archiveEnd; }
    ByteSource& bytes() const { return *source; }

    /// The size of an item's entry in the directory.
    std::size_t recordSize(ItemIndex index) const;

    /// An item from its start, as far as it was read.
    struct ItemStart {
        const unsigned char* bytes;
        std::size_t size;
        std::size_t headerSize; ///< of the local header, in front of the content; may be more than `size`
    };

    /// Reads an item from its start, as far as it reaches and there is room. Raises if its local header says
    /// anything else than the directory.
    /// @param buffer  for what doesn't lie in memory
    /// @param room    at least 30 bytes, the size of the shortest header
    ItemStart lookAtStart(ItemIndex index, unsigned char* buffer, std::size_t room) const;

    /// @return `count` bytes that belong to an item: where they lie in memory, else in `buffer`
    const unsigned char* look(ItemIndex index, std::uint64_t offset, unsigned char* buffer,
                              std::size_t count) const;

    /// Reads all of `count` bytes that belong to an item.
    void read(ItemIndex index, std::uint64_t offset, unsigned char* buffer, std::size_t count) const;

    /// Raises for an item that is encrypted or compressed by an unknown method.
    void requireReadable(ItemIndex index) const;

    /// Whether a deflated item may lack the last block, if its content is the right one. If so, who reads such an
    /// item notes it.
    bool takesUnfinished() const { return lenient; }
    void noteUnfinished(ItemIndex index) { unfinished.insert(index); }
    const std::set<ItemIndex>& unfinishedItems() const { return unfinished; }

    /// Expands a deflated item with one call, if it can be had in memory as a whole. Raises as `lookAtStart`
    /// does, and for nothing else.
    /// @param content  has room for all of it
    /// @return whether the whole content is there, and is the right one
    bool expandWhole(ItemIndex index, unsigned char* content);

    /// An inflater at its start: one given back, or a new one.
    std::unique_ptr<Inflater> takeInflater();
    void giveInflater(std::unique_ptr<Inflater> inflater) noexcept { spare = std::move(inflater); }

    /// Memory for a content of that size at least: what was given back, or new one.
    std::vector<unsigned char> takeMemory(std::size_t size);
    void giveMemory(std::vector<unsigned char>& memory) noexcept { spareMemory = std::exchange(memory, {}); }

    /// Raises for an item whose content can't be read.
    [[noreturn]] void failItem(ItemIndex index, const std::string& what) const;

    const std::string& place() const { return where; }
    std::string itemPlace(ItemIndex index) const;

private:
    std::shared_ptr<ByteSource> source;
    std::string where;
    bool lenient = false;
    bool comparesHeaders = true;
    ArchiveDirectory directory;
    std::set<ItemIndex> unfinished;
    std::unique_ptr<Inflater> spare;
    std::vector<unsigned char> spareMemory;
    WholeInflater wholeInflater;
    std::vector<unsigned char> compressed; ///< of an item that is expanded as a whole
};

} // namespace opc::physical::zip
