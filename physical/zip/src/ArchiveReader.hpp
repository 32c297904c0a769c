#pragma once

#include "ByteSource.hpp"

#include <zip.h>

#include <cstdint>
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

/// The position of an item in the archive's directory.
using ItemIndex = std::uint32_t;

/// What the directory says of an item.
struct ItemStatus {
    std::string name; ///< UTF-8
    std::uint64_t size;
    std::uint64_t compressedSize;
    std::uint16_t method;
    bool encrypted;
};

/// An archive open to read.
class ArchiveReader {
public:
    ArchiveReader(std::shared_ptr<ByteSource> bytes, std::string archivePlace);

    std::uint64_t itemCount() const;
    ItemStatus status(ItemIndex item) const;

    /// Starts to read the content of an item.
    ItemFile open(ItemIndex item) const;

    const std::string& place() const { return where; }
    std::string itemPlace(ItemIndex item) const;

private:
    std::string where;
    ArchivePtr archive;
};

} // namespace opc::physical::zip
