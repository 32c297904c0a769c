#pragma once

#include "ArchiveReader.hpp"
#include "BufferedTarget.hpp"
#include "Deflater.hpp"
#include "Records.hpp"
#include "WholeDeflater.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace opc::physical::zip {

/// An item that is to be written.
struct NewItem {
    static constexpr int USUAL_LEVEL = 6;

    std::string_view name;    ///< UTF-8
    std::string_view rawName; ///< as it is to be in the archive; empty if that is the same
    ByteSource& content;      ///< is read from its first byte to its last, perhaps twice
    std::uint16_t method = DEFLATE;
    int level = USUAL_LEVEL;
};

/// Writes an archive, item after item: items of an old archive as they are, many at a time, and new ones.
class OPC_ZIP_EXPORT ItemWriter {
public:
    /// @param old  the archive of the items that are kept; null if there is none
    /// @param out  receives the new archive; must outlive the writer
    ItemWriter(const ArchiveReader* old, ByteTarget& out, std::string where, const ZipOptions& options);

    /// Copies an item of the old archive with its headers, its compressed content and its data descriptor.
    void keep(ItemIndex item);

    /// A content that readers would refuse because of its ratio is stored.
    void write(const NewItem& item);

    /// Writes the directory, with the comment of the old archive. Nothing is written after that. If this or another
    /// operation throws, discard the target.
    void finish();

    std::uint64_t itemCount() const { return count; } ///< so far

private:
    void copyRun();
    void writeContent(const NewItem& item, DirectoryEntry& entry);
    void store(ByteSource& content, DirectoryEntry& entry);
    void deflateWhole(ByteSource& content, int level, DirectoryEntry& entry);
    void deflateStream(ByteSource& content, int level, DirectoryEntry& entry);
    const unsigned char* look(ByteSource& source, std::uint64_t offset, std::size_t size);
    void emit(const std::string& bytes);
    void emit(const unsigned char* bytes, std::size_t size);
    void require(int error) const;

    const ArchiveReader* old;
    BufferedTarget out;
    std::string where;
    const ZipOptions& options;
    std::uint32_t time;         ///< date and time of new items
    std::string directory;      ///< of the new archive
    std::uint64_t count = 0;    ///< of items, so far
    std::uint64_t runStart = 0; ///< the start of the bytes of the old archive that are still to be copied
    std::uint64_t runEnd = 0;
    std::vector<unsigned char> block;      ///< for bytes that aren't in memory
    std::vector<unsigned char> compressed; ///< for bytes that don't fit into `out`
    Deflater deflater;
    WholeDeflater wholeDeflater;
};

} // namespace opc::physical::zip
