#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/inspection/Export.hpp>
#include <opc/physical/FileState.hpp>
#include <opc/physical/ZipOptions.hpp>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace opc::physical {
class RandomAccessSource;
}

namespace opc::inspection {

/// What one header of an item says: the directory's, or the local one in front of the content. Numbers are those of the
/// ZIP format, with ZIP64 fields already taken in.
struct ItemHeader {
    std::string name; ///< its bytes, undecoded
    std::uint16_t versionNeeded = 0;
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    std::uint16_t time = 0; ///< MS-DOS format
    std::uint16_t date = 0;
    std::uint32_t checksum = 0;
    std::uint64_t compressedSize = 0;
    std::uint64_t size = 0;
    std::string extraFields; ///< their bytes
};

/// What an item is to the package.
enum class ItemKind {
    Part,
    Relationships, ///< a relationships part
    ContentTypes,  ///< `[Content_Types].xml`
    Piece,         ///< of an interleaved part or content types stream
    Folder,
    Ignored, ///< can't be a part: its name breaks the rules, `[trash]/`, a piece of an incomplete sequence …
    Hidden   ///< has a local header, but isn't in the directory
};

/// An item as it lies in the archive.
struct ArchiveItem {
    ItemKind kind = ItemKind::Ignored;
    std::string name; ///< in UTF-8: of the directory, or of the local header for a hidden one
    std::string
        partName; ///< what it maps to, `/word/document.xml`; of a piece: of the joined part; empty for no part
    std::string reason; ///< why it is ignored or hidden
    std::optional<ItemHeader> central;
    std::optional<ItemHeader> local; ///< nothing where it can't be read
    std::optional<std::uint64_t> headerOffset, dataOffset,
        endOffset; ///< in the archive; the end is behind the descriptor
    bool hasDescriptor = false;
    std::uint32_t descriptorChecksum = 0;
    std::uint64_t descriptorCompressedSize = 0, descriptorSize = 0;
    std::uint16_t versionMadeBy = 0;
    std::uint32_t externalAttributes = 0;
    std::string comment;       ///< its bytes
    bool hasPieceName = false; ///< `[0].piece`: also where the sequence is incomplete
    std::uint64_t pieceNumber = 0;
    bool isLastPiece = false;
    std::string unreadable; ///< why its content can't be read, as far as the records tell; else empty
    bool isFaulty = false;  ///< `faults()` has something about it
};

/// Bytes of the archive that belong to no item and no record.
struct ArchiveGap {
    std::uint64_t offset;
    std::uint64_t size;
    enum Where { BeforeItems, BetweenItems, BeforeDirectory, BehindDirectory, BehindEnd } where;
};

/// Something wrong with the records of an archive.
struct ArchiveFault {
    std::string_view rule;           ///< the id of the rule that it breaks
    std::optional<std::size_t> item; ///< its place among the items, if it concerns one
    std::optional<std::uint64_t> offset;
    std::string message;
};

/// A ZIP archive as it lies, readable also where it breaks the standard: reading goes on after each fault, within limits.
///
/// Use an object from one thread at a time.
class OPC_INSPECTION_EXPORT Archive {
public:
    /// @param limits  their `lenient` concerns contents whose compressed data lacks its last block: then they are read
    /// @throws opc::Exception  the file can't be read, with the code of the system
    explicit Archive(const std::filesystem::path& path, const physical::ZipOptions& limits = {});
    explicit Archive(std::vector<unsigned char> bytes, const physical::ZipOptions& limits = {});
    explicit Archive(std::shared_ptr<physical::RandomAccessSource> bytes,
                     const physical::ZipOptions& limits = {});
    Archive(Archive&&) noexcept;
    Archive& operator=(Archive&&) noexcept;
    ~Archive();

    /// How messages name it: the path of its file, or a description.
    const std::string& place() const;

    /// The state of its file when it was opened: whoever replaces the file can tell whether it is still the same. Of no file
    /// if the bytes come from elsewhere.
    physical::FileState fileState() const;

    std::uint64_t size() const;

    /// Copies up to `count` bytes from `offset`; fewer only at the end.
    std::size_t read(std::uint64_t offset, unsigned char* buffer, std::size_t count) const;

    /// In the order of the directory, then the hidden ones in the order of their places.
    const std::vector<ArchiveItem>& items() const;
    const std::vector<ArchiveGap>& gaps() const;

    /// What is wrong with the records, and what is beyond the limits. Gaps and hidden items aren't in it.
    const std::vector<ArchiveFault>& faults() const;

    bool isZip() const; ///< whether there is a directory that can be read at all
    std::string comment() const;

    /// The content of an item. The reading throws `opc::Exception` where the compressed data is damaged, or the size or the
    /// checksum isn't that of the directory, as a `ZipPackage` does.
    /// @param item  one of `items()`
    /// @return a stream that is ready to read; it must not outlive the archive
    /// @throws opc::Exception  the item can't be read at all: see `unreadable`
    std::unique_ptr<InputStream> open(const ArchiveItem& item) const;

    /// The same for the pieces of an interleaved part, as one content.
    std::unique_ptr<InputStream> open(const std::vector<const ArchiveItem*>& pieces) const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace opc::inspection
