#pragma once

#include "ArchiveReader.hpp"
#include "BufferedTarget.hpp"
#include "Deflater.hpp"

#include <string>
#include <vector>

namespace opc::physical::zip {

class ZipContent;

/// Writes a new archive: what the old one has, with changes. What hasn't changed is copied as it stands,
/// many items at a time.
class ArchiveWriter {
public:
    /// @param oldArchive  the old archive; null if there is none
    /// @param target      gets the new one; must outlive the writer
    ArchiveWriter(const ArchiveReader* oldArchive, ByteTarget& target, std::string archivePlace,
                  bool fixedTimes);

    void remove(ItemIndex item) { changes[item].removed = true; }

    /// Writes a content that has changed, in the place of its old item if there is one such.
    /// @param content  must outlive the writer
    void put(const ZipContent& content);

    /// Does the work. Raises if anything fails; then the target is to be thrown away.
    void finish();

private:
    struct Change {
        bool removed = false;
        const ZipContent* content = nullptr; ///< what takes the item's place
    };

    void keep(ItemIndex item);
    void copyRun();
    void copyBytes(std::uint64_t from, std::uint64_t to);
    void write(const ZipContent& content, const DirectoryEntry* replaced);
    void writeContent(const ZipContent& content, DirectoryEntry& entry);
    void store(ByteSource& content, DirectoryEntry& entry);
    void deflate(ByteSource& content, int level, DirectoryEntry& entry);
    const unsigned char* readBlock(ByteSource& content, std::uint64_t offset, std::size_t count);
    void writeDirectory();
    void writeKeptRecord(const DirectoryEntry& entry, std::uint64_t offset);
    void emit(const std::string& bytes);
    void emit(const unsigned char* bytes, std::size_t count);

    const ArchiveReader* old;
    BufferedTarget out;
    std::string where;
    std::uint32_t time; ///< date and time of what is written
    std::vector<Change> changes;
    std::vector<const ZipContent*> added;

    /// An item of the new archive: one of the old archive at another place, or a new one.
    struct Placed {
        const DirectoryEntry* kept;
        std::uint64_t offset;
        std::size_t written; ///< which of `entries`
    };
    std::vector<Placed> placed;
    std::vector<DirectoryEntry> entries; ///< of the items that are new or replaced
    std::uint64_t runStart = 0;          ///< bytes of the old archive that are to be copied
    std::uint64_t runEnd = 0;
    std::vector<unsigned char> block;
    Deflater deflater;
};

} // namespace opc::physical::zip
