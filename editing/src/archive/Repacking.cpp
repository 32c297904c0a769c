#include <opc/editing/Repacking.hpp>
#include <opc/editing/ResultCheck.hpp>

#include "archive/FullReport.hpp"
#include "archive/HiddenContents.hpp"
#include "archive/ItemOrder.hpp"
#include "archive/TemporaryArchive.hpp"
#include "comparison/NamePattern.hpp"
#include "subject/Names.hpp"

#include "zip/src/ItemName.hpp"
#include "zip/src/ItemWriter.hpp"
#include "zip/src/SourceStore.hpp"
#include "zip/src/ZipContentReader.hpp"

#include <opc/core/Exception.hpp>
#include <opc/inspection/ArchiveSource.hpp>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <iterator>
#include <memory>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

namespace opc::editing {

using namespace archive;
using namespace physical::zip;
using inspection::Archive;
using inspection::NamePattern;

namespace {

/// The content of an item of the old archive. It is expanded as it is read; reading from the start again begins anew.
class OldContent : public ByteSource {
public:
    OldContent(ArchiveReader& archive, ItemIndex item) : archive(archive), item(item) {}

    std::uint64_t size() const noexcept override { return archive.item(item).size; }

    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
               std::size_t& got) noexcept override {
        got = 0;
        try {
            if (!reader || offset < position)
                start();
            while (got < count && !reader->isDone())
                got += static_cast<std::size_t>(reader->read(buffer + got, count - got));
            position += got;
            return 0;
        } catch (...) {
            failure = std::current_exception();
            return EBADMSG;
        }
    }

    std::exception_ptr failure; ///< why the last read has failed

private:
    void start() {
        reader.emplace(archive, ItemRange{&item, &item + 1});
        position = 0;
    }

    ArchiveReader& archive;
    const ItemIndex item;
    std::optional<ItemReader> reader;
    std::uint64_t position = 0;
};

/// A pattern that doesn't begin at the root matches the end of names.
NamePattern patternOf(const std::string& text) {
    return NamePattern((text.substr(0, 1) == "/" ? "" : "**/") + text);
}

class Repacking {
public:
    Repacking(const Archive& package, const RepackingOptions& options) : package(package), options(options) {
        std::transform(options.stored.begin(), options.stored.end(), std::back_inserter(stored), patternOf);
    }

    Repacked run() {
        physical::ZipOptions reading = options.archive;
        reading.lenient = true;
        inspection::ArchiveSource source(package);
        ArchiveReader old(std::make_shared<SourceBytes>(source), package.place(), reading,
                          ArchiveReader::HeaderCheck::Now);
        Archive made = makeTemporaryArchive(options.archive, [&](ByteTarget& target) { write(old, target); });
        check(made);
        return {std::move(made), items, findHidden(package)};
    }

private:
    void write(ArchiveReader& old, ByteTarget& target) {
        std::vector<ItemIndex> order(old.itemCount());
        std::iota(order.begin(), order.end(), 0U);
        std::stable_sort(order.begin(), order.end(), [&](ItemIndex left, ItemIndex right) {
            return ItemOrder(old.item(left).name, options.archive.deterministic) <
                   ItemOrder(old.item(right).name, options.archive.deterministic);
        });
        ItemWriter writer(&old, target, package.place(), options.archive);
        for (const ItemIndex item : order)
            write(writer, old, item);
        writer.finish();
        items = writer.itemCount();
    }

    void check(const Archive& made) const {
        requireOpens(made, options.archive);
        const inspection::Report after = inspectInFull(made, options.archive);
        if (after.count(inspection::Severity::Error) != 0)
            refuseNewErrors(findNewErrors(inspectInFull(package, options.archive), after, {}));
    }

    void write(ItemWriter& writer, ArchiveReader& old, ItemIndex index) const {
        const DirectoryEntry& entry = old.item(index);
        if (!whyUnreadable(entry).empty())
            return writer.keep(index);
        OldContent content(old, index);
        try {
            writer.write(
                {entry.name, entry.rawName, content, methodFor(entry.name), std::max(options.level, 1)});
        } catch (const Exception&) {
            if (content.failure)
                std::rethrow_exception(content.failure);
            throw;
        }
    }

    std::uint16_t methodFor(std::string_view item) const {
        const ItemName name = readItemName(item);
        const std::string key =
            inspection::keyOfName('/' + (name.partName.empty() ? std::string(item) : name.partName));
        const bool isStored = std::any_of(stored.begin(), stored.end(), [&key](const NamePattern& pattern) {
            return pattern.matches(key);
        });
        return isStored || options.level == 0 ? STORE : DEFLATE;
    }

    const Archive& package;
    const RepackingOptions& options;
    std::vector<NamePattern> stored;
    std::uint64_t items = 0;
};

} // namespace

Repacked repack(const Archive& package, const RepackingOptions& options) {
    return Repacking(package, options).run();
}

} // namespace opc::editing
