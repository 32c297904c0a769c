#include "mending/ArchivePlan.hpp"

#include "mending/ItemRecords.hpp"

#include "zip/src/RecordWriting.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <array>
#include <numeric>

namespace opc::editing::mending {

using inspection::Archive;
using inspection::ArchiveItem;

ArchivePlan::ArchivePlan(const Archive& archive)
    : archive(archive), fates(archive.items().size()), order(archive.items().size()) {
    std::iota(order.begin(), order.end(), std::size_t{0});
    for (const ArchiveItem& item : archive.items())
        fateOf(item).isDropped = !item.central;
}

ItemFate& ArchivePlan::fateOf(const ArchiveItem& item) {
    return fates[indexOf(item)];
}

ItemFate& ArchivePlan::touch(const ArchiveItem& item) {
    isDue = true;
    ItemFate& fate = fateOf(item);
    fate.hasNewHeader = true;
    return fate;
}

void ArchivePlan::drop(const ArchiveItem& item) {
    isDue = true;
    fateOf(item).isDropped = true;
}

bool ArchivePlan::isEmpty() const {
    return first.empty() &&
           std::all_of(fates.begin(), fates.end(), [](const ItemFate& fate) { return fate.isDropped; });
}

const ArchiveItem* ArchivePlan::findLost() const {
    for (std::size_t i = 0; i < fates.size(); ++i)
        if (!fates[i].isDropped && !fates[i].content && !archive.items()[i].endOffset)
            return &archive.items()[i];
    return nullptr;
}

namespace {

class PlanWriter {
public:
    PlanWriter(const ArchivePlan& plan, const Sink& sink) : plan(plan), sink(sink) {}

    void run() {
        for (const NewItem& item : plan.first)
            writeNew(item);
        for (const std::size_t index : plan.order)
            if (!plan.fates[index].isDropped)
                writeItem(plan.archive.items()[index], plan.fates[index]);
        const std::uint64_t start = offset;
        put(directory);
        put(physical::zip::endRecords(count, start, directory.size(),
                                      plan.losesComment ? std::string() : plan.archive.comment()));
    }

private:
    void writeNew(const NewItem& item) {
        ItemRecord record;
        record.name = item.name;
        add(record, setContent(record, item.content));
    }

    void writeItem(const ArchiveItem& item, const ItemFate& fate) {
        ItemRecord record = recordOf(item);
        if (fate.hasNewHeader)
            record.simplify();
        if (fate.losesExtraFields)
            record.extraFields.clear();
        if (fate.losesComment)
            record.comment.clear();
        if (fate.losesRights)
            record.externalAttributes &= ~(06000U << 16U);
        if (!fate.name.empty())
            record.name = fate.name;
        if (fate.content)
            return add(record, setContent(record, *fate.content));
        if (!fate.hasNewHeader) {
            record.append(directory, offset);
            ++count;
            return copy(*item.headerOffset, *item.endOffset - *item.headerOffset);
        }
        add(record, {});
        copy(*item.dataOffset, record.compressedSize);
    }

    void add(const ItemRecord& record, const std::string& compressed) {
        record.append(directory, offset);
        ++count;
        put(record.localHeader());
        put(compressed);
    }

    void copy(std::uint64_t from, std::uint64_t size) {
        std::array<unsigned char, 65536> block;
        while (size > 0) {
            const std::size_t got = plan.archive.read(
                from, block.data(), static_cast<std::size_t>(std::min<std::uint64_t>(size, block.size())));
            if (got == 0)
                throw Exception("The archive was cut off while it was read");
            sink(block.data(), got);
            offset += got;
            from += got;
            size -= got;
        }
    }

    void put(const std::string& bytes) {
        sink(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
        offset += bytes.size();
    }

    const ArchivePlan& plan;
    const Sink& sink;
    std::uint64_t offset = 0;
    std::uint64_t count = 0;
    std::string directory;
};

} // namespace

void write(const ArchivePlan& plan, const Sink& sink) {
    PlanWriter(plan, sink).run();
}

} // namespace opc::editing::mending
