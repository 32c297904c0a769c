#pragma once

#include "ArchiveDirectory.hpp"

#include <zip.h>

#include <memory>
#include <string>

namespace opc::physical::zip {

struct ArchiveDiscard {
    void operator()(zip_t* archive) const noexcept { zip_discard(archive); }
};
using ArchivePtr = std::unique_ptr<zip_t, ArchiveDiscard>;

struct ItemClose {
    void operator()(zip_file_t* file) const noexcept { zip_fclose(file); }
};
using ItemFile = std::unique_ptr<zip_file_t, ItemClose>;

/// An archive open to read. libzip reads the contents; what it takes on trust, or looks for in other places
/// than other programs, is checked in front of it.
class ArchiveReader {
public:
    /// Reads the directory, with all checks and within the limits, before libzip opens the archive.
    ArchiveReader(std::shared_ptr<ByteSource> archive, std::string archivePlace, const ZipOptions& limits);

    ItemIndex itemCount() const { return static_cast<ItemIndex>(entries.size()); }
    const DirectoryEntry& item(ItemIndex index) const { return entries[index]; }

    /// Starts to read the content of an item. Raises if its local header says anything else than the directory.
    ItemFile open(ItemIndex index) const;

    /// Raises for an item whose content can't be read.
    [[noreturn]] void failItem(ItemIndex index, const std::string& what) const;

    const std::string& place() const { return where; }
    std::string itemPlace(ItemIndex index) const;

private:
    void requireAgreement() const;
    void checkLocalHeader(ItemIndex index) const;

    /// Reads all of `count` bytes that belong to an item.
    void read(ItemIndex index, std::uint64_t offset, unsigned char* buffer, std::size_t count) const;

    std::shared_ptr<ByteSource> source;
    std::string where;
    std::vector<DirectoryEntry> entries;
    ArchivePtr archive;
};

} // namespace opc::physical::zip
