#include "archive/Layout.hpp"

#include "archive/HiddenItems.hpp"

#include <algorithm>

namespace opc::inspection::archive {

namespace {

class LayoutReader {
public:
    LayoutReader(RecordBytes& bytes, const physical::ZipOptions& limits, ArchiveContents& contents)
        : contents(contents), hidden(bytes, limits.maxItems, contents) {}

    void read(const std::vector<std::size_t>& order, std::uint64_t archiveSize);

private:
    void takeItem(std::size_t index);
    void takeDirectory();

    /// Looks into what lies between the last record and the next one.
    void close(std::uint64_t next, ArchiveGap::Where where);

    ArchiveContents& contents;
    HiddenItems hidden;
    std::uint64_t end = 0; ///< of what has been taken
    std::size_t last = 0;  ///< the item that reaches there
    bool hasItems = false;
};

void LayoutReader::read(const std::vector<std::size_t>& order, std::uint64_t archiveSize) {
    for (const std::size_t index : order)
        takeItem(index);
    if (contents.hasDirectory)
        takeDirectory();
    else
        close(archiveSize, ArchiveGap::BeforeItems);
    if (contents.endRecords.end > 0) {
        close(contents.endRecords.start, ArchiveGap::BehindDirectory);
        end = std::max(end, contents.endRecords.end);
    }
    close(archiveSize, ArchiveGap::BehindEnd);
}

void LayoutReader::takeItem(std::size_t index) {
    const std::uint64_t start = *contents.items[index].headerOffset;
    if (hasItems && start < end) {
        contents.addFault("SEC-49", index, start, "The item overlaps with " + contents.items[last].name);
        for (const std::size_t overlapping : {index, last})
            if (std::string& why = contents.items[overlapping].unreadable; why.empty())
                why = "overlaps with another item";
    } else {
        close(start, hasItems ? ArchiveGap::BetweenItems : ArchiveGap::BeforeItems);
    }
    if (!hasItems || *contents.items[index].endOffset > end) {
        end = *contents.items[index].endOffset;
        last = index;
    }
    hasItems = true;
}

void LayoutReader::takeDirectory() {
    if (hasItems && end > contents.directory.start) {
        ArchiveItem& item = contents.items[last];
        contents.addFault("SEC-49", last, item.headerOffset, "The item overlaps with the directory");
        if (item.unreadable.empty())
            item.unreadable = "overlaps with the directory";
    }
    close(contents.directory.start, hasItems ? ArchiveGap::BeforeDirectory : ArchiveGap::BeforeItems);
    end = std::max(end, contents.directory.end);
}

void LayoutReader::close(std::uint64_t next, ArchiveGap::Where where) {
    if (next <= end)
        return;
    for (const Extent& gap : hidden.take({end, next}))
        contents.gaps.push_back({gap.start, gap.end - gap.start, where});
    end = next;
}

} // namespace

void readLayout(RecordBytes& bytes, const physical::ZipOptions& limits, const std::vector<std::size_t>& order,
                ArchiveContents& contents) {
    LayoutReader(bytes, limits, contents).read(order, bytes.size());
}

} // namespace opc::inspection::archive
