#pragma once

#include "ArchiveDirectory.hpp"
#include "Inflater.hpp"
#include "WholeInflater.hpp"

#include <opc/physical/ReadingMemory.hpp>
#include <opc/physical/ZipExport.hpp>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace opc::physical::zip {

/// An archive that is open for reading.
class OPC_ZIP_EXPORT ArchiveReader {
public:
    /// An item is expanded as a whole if neither its compressed nor its expanded size exceeds this.
    static constexpr std::uint64_t LARGEST_WHOLE = 256ULL << 10;

    /// When the local headers are compared with the directory.
    enum class HeaderCheck {
        Now,     ///< all of them, with the whole layout of the archive
        WhenRead ///< each when its item is read, since reading is slow
    };

    /// Reads the directory.
    ArchiveReader(std::shared_ptr<ByteSource> archive, std::string archivePlace, const ZipOptions& options,
                  HeaderCheck check);

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
    const std::vector<Ambiguity>& ambiguities() const { return directory.ambiguities; }
    const std::vector<UnreadData>& unread() const { return directory.unread; }

    /// How many bytes come after all records.
    std::uint64_t bytesBehind() const { return source->size() - directory.archiveEnd; }
    ByteSource& bytes() const { return *source; }

    /// Compares all local headers, and the whole layout of the archive, if that wasn't done yet.
    void checkLayoutNow();

    /// Looks into the data of items for records that other programs may take for those of the archive, once.
    void searchContents();

    /// The size of an item's entry in the directory.
    std::size_t recordSize(ItemIndex index) const;

    /// The first bytes of an item.
    struct ItemStart {
        const unsigned char* bytes;
        std::size_t size;
        std::size_t headerSize; ///< of the local header, before the content; may be more than `size`
    };

    /// Reads an item from its start, until its end or until the buffer is full. Throws if its local header
    /// contradicts the directory.
    /// @param buffer  used if the bytes aren't in memory
    /// @param room    at least 30 bytes, the size of the shortest header
    ItemStart lookAtStart(ItemIndex index, unsigned char* buffer, std::size_t room) const;

    /// @return `count` bytes that belong to an item: in memory if they are there, otherwise in `buffer`
    const unsigned char* look(ItemIndex index, std::uint64_t offset, unsigned char* buffer,
                              std::size_t count) const;

    /// Reads exactly `count` bytes that belong to an item.
    void read(ItemIndex index, std::uint64_t offset, unsigned char* buffer, std::size_t count) const;

    /// Throws if an item is encrypted or compressed by an unknown method.
    void requireReadable(ItemIndex index) const;

    /// Whether a deflated item may lack the last block if its content is right. The reader of such an item must
    /// report it.
    bool takesUnfinished() const { return lenient; }
    void takeUnfinished() noexcept { lenient = true; }
    void noteUnfinished(ItemIndex index) { unfinished.insert(index); }
    const std::set<ItemIndex>& unfinishedItems() const { return unfinished; }

    /// As `ZipOptions::whenRead`.
    void setWhenRead(std::function<void(std::uint64_t)> call) { whenRead = std::move(call); }
    void noteRead(std::uint64_t bytes) const {
        if (whenRead)
            whenRead(bytes);
    }

    /// Refuses what zlib refuses, as most programs do. Otherwise `expandWhole` takes a few senseless codes.
    void readAsMostProgramsDo() noexcept { strict = true; }

    /// Expands a deflated item with one call, if it fits into memory as a whole. Throws only as `lookAtStart` does.
    /// @param content  has room for all of it
    /// @return whether the content is complete and right
    bool expandWhole(ItemIndex index, unsigned char* content);

    /// Gives the content of a deflated item that the memory for readings knows. Throws only as `lookAtStart` does.
    /// @param content  has room for all of it
    /// @return whether it is known
    bool recall(ItemIndex index, unsigned char* content) const;

    /// Keeps the content of a deflated item in the memory for readings, if there is one.
    /// @param content  complete and right
    void keep(ItemIndex index, const unsigned char* content) const;

    /// An inflater at its start: one that was given back, or a new one.
    std::unique_ptr<Inflater> takeInflater();
    void giveInflater(std::unique_ptr<Inflater> inflater) noexcept { spare = std::move(inflater); }

    /// Memory for a content of at least that size: some that was given back, or new memory.
    std::vector<unsigned char> takeMemory(std::size_t size);
    void giveMemory(std::vector<unsigned char>& memory) noexcept { spareMemory = std::exchange(memory, {}); }

    /// Throws if the content of an item can't be read.
    [[noreturn]] void failItem(ItemIndex index, const std::string& what) const;

    const std::string& place() const { return where; }
    std::string itemPlace(ItemIndex index) const;

private:
    std::string_view compressedBytes(ItemIndex index) const;
    bool expandAsZlib(const unsigned char* data, std::size_t count, unsigned char* content, std::size_t size);

    std::shared_ptr<ByteSource> source;
    std::string where;
    std::function<void(std::uint64_t)> whenRead;
    std::shared_ptr<ReadingMemory> memory; ///< null if there is none, or reading costs calls
    bool lenient = false;
    bool comparesHeaders = true;
    bool hasCheckedLayout = true;
    bool hasSearchedContents = false;
    ArchiveDirectory directory;
    std::set<ItemIndex> unfinished;
    std::unique_ptr<Inflater> spare;
    std::vector<unsigned char> spareMemory;
    bool strict = false;
    WholeInflater wholeInflater;
    std::vector<unsigned char> compressed; ///< for an item that is expanded as a whole
};

} // namespace opc::physical::zip
