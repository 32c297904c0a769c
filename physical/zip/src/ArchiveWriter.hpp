#pragma once

#include "ItemWriter.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace opc::physical::zip {

class ZipContent;

/// Writes a new archive: the old one with changes.
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

    void write(const ZipContent& content, std::string_view rawName);
    void writeSecond();

    const ArchiveReader* old;
    ItemWriter items;
    std::vector<Change> changes;
    std::vector<const ZipContent*> added;
    const ZipContent* second = nullptr; ///< until it is written
};

} // namespace opc::physical::zip
