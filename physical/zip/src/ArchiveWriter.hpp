#pragma once

#include "ArchiveReader.hpp"
#include "BufferedTarget.hpp"
#include "Deflater.hpp"
#include "WholeDeflater.hpp"

#include <string>
#include <vector>

namespace opc::physical::zip {

class ZipContent;

/// Writes a new archive: the old one with changes. Unchanged items are copied as they are, many at a time.
class ArchiveWriter {
public:
    /// @param old  the old archive; null if there is none
    /// @param out  receives the new archive; must outlive the writer
    ArchiveWriter(const ArchiveReader* old, ByteTarget& out, std::string where, const ZipOptions& options);

    void remove(ItemIndex item) { changes[item].removed = true; }

    /// Writes a changed content, in the place of its old item if there is one.
    /// @param content  must outlive the writer
    void put(const ZipContent& content);

    /// Does the same, but a content without an old item becomes the second item.
    void putSecond(const ZipContent& content);

    /// Writes the archive. If it throws, discard the target.
    void finish();

private:
    struct Change {
        bool removed = false;
        const ZipContent* content = nullptr; ///< the content that replaces the item; null if none does
    };

    void keep(ItemIndex item);
    void copyRun();
    void write(const ZipContent& content, const DirectoryEntry* replaced);
    void writeContent(const ZipContent& content, DirectoryEntry& entry);
    void store(ByteSource& content, DirectoryEntry& entry);
    void deflateWhole(ByteSource& content, int level, DirectoryEntry& entry);
    void deflateStream(ByteSource& content, int level, DirectoryEntry& entry);
    const unsigned char* look(ByteSource& source, std::uint64_t offset, std::size_t count);
    void writeSecond();
    void finishDirectory();
    void emit(const std::string& bytes);
    void emit(const unsigned char* bytes, std::size_t count);
    void require(int error) const;

    const ArchiveReader* old;
    BufferedTarget out;
    std::string where;
    const ZipOptions& options;
    std::uint32_t time; ///< date and time of new items
    std::vector<Change> changes;
    std::vector<const ZipContent*> added;
    const ZipContent* second = nullptr; ///< until it is written
    std::string directory;              ///< of the new archive
    std::uint64_t itemCount = 0;        ///< of the new archive, so far
    std::uint64_t runStart = 0; ///< the start of the bytes of the old archive that are still to be copied
    std::uint64_t runEnd = 0;
    std::vector<unsigned char> block;      ///< for bytes that aren't in memory
    std::vector<unsigned char> compressed; ///< for bytes that don't fit into `out`
    Deflater deflater;
    WholeDeflater wholeDeflater;
};

} // namespace opc::physical::zip
