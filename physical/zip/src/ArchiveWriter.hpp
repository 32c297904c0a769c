#pragma once

#include "ArchiveReader.hpp"
#include "BufferedTarget.hpp"

#include <memory>
#include <string>

namespace opc::physical::zip {

class ZipContent;

/// Writes a new archive: what the old one has, with changes.
class ArchiveWriter {
public:
    /// @param old     the old archive; null if there is none
    /// @param target  gets the new one; must outlive the writer
    ArchiveWriter(std::shared_ptr<ByteSource> old, ByteTarget& target, std::string archivePlace,
                  bool fixedTimes);

    void remove(ItemIndex item);

    /// Writes a content that has changed, in the place of its old item if there is one such.
    void put(const ZipContent& content);

    /// Does the work. Raises if anything fails; then the target is to be thrown away.
    void finish();

private:
    std::uint64_t insert(const ZipContent& content);
    void check(bool success, const std::string& what) const;

    ByteTarget& out;
    std::string where;
    bool deterministic;
    ArchivePtr archive;
    std::uint64_t itemsLeft = 0;
};

} // namespace opc::physical::zip
