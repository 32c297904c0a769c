#pragma once

#include "ArchiveReader.hpp"
#include "BufferedTarget.hpp"
#include "Deflater.hpp"
#include "WholeDeflater.hpp"

#include <string>
#include <vector>

namespace opc::physical::zip {

class ZipContent;

/// Writes a new archive: what the old one has, with changes. What hasn't changed is copied as it stands,
/// many items at a time.
class ArchiveWriter {
public:
    /// @param old  the old archive; null if there is none
    /// @param out  gets the new one; must outlive the writer
    ArchiveWriter(const ArchiveReader* old, ByteTarget& out, std::string where, const ZipOptions& options);

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
    void write(const ZipContent& content, const DirectoryEntry* replaced);
    void writeContent(const ZipContent& content, DirectoryEntry& entry);
    void store(ByteSource& content, DirectoryEntry& entry);
    void deflateWhole(ByteSource& content, int level, DirectoryEntry& entry);
    void deflateStream(ByteSource& content, int level, DirectoryEntry& entry);
    const unsigned char* look(ByteSource& source, std::uint64_t offset, std::size_t count);
    void finishDirectory();
    void emit(const std::string& bytes);
    void emit(const unsigned char* bytes, std::size_t count);
    void require(int error) const;

    const ArchiveReader* old;
    BufferedTarget out;
    std::string where;
    const ZipOptions& options;
    std::uint32_t time; ///< date and time of what is written
    std::vector<Change> changes;
    std::vector<const ZipContent*> added;
    std::string directory;       ///< of the new archive
    std::uint64_t itemCount = 0; ///< of the new archive, so far
    std::uint64_t runStart = 0;  ///< bytes of the old archive that are to be copied
    std::uint64_t runEnd = 0;
    std::vector<unsigned char> block;      ///< for what isn't in memory
    std::vector<unsigned char> compressed; ///< for what has no room in `out`
    Deflater deflater;
    WholeDeflater wholeDeflater;
};

} // namespace opc::physical::zip
