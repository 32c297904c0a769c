#include "ArchiveWriter.hpp"

#include "ArchiveSource.hpp"
#include "Failure.hpp"
#include "ZipContent.hpp"

#include <array>
#include <cerrno>

namespace opc::physical::zip {

namespace {

/// The first of January 1980, midnight: the origin of time in a ZIP archive.
constexpr zip_uint16_t FIXED_DATE = 0x21;
constexpr zip_uint16_t FIXED_TIME = 0;

/// All that an archive without items consists of.
constexpr std::array<unsigned char, 22> EMPTY_ARCHIVE = {'P', 'K', 5, 6};

} // namespace

ArchiveWriter::ArchiveWriter(std::shared_ptr<ByteSource> old, ByteTarget& target, std::string archivePlace,
                             bool fixedTimes)
    : out(target), where(std::move(archivePlace)), deterministic(fixedTimes) {
    const int flags = old ? 0 : ZIP_CREATE | ZIP_TRUNCATE;
    SourcePtr source = makeSource(std::move(old), &target);
    zip_error_t error;
    zip_error_init(&error);
    archive.reset(zip_open_from_source(source.get(), flags, &error));
    if (!archive)
        failZip(where, "can't read the directory of the archive", error);
    source.release(); // belongs to the archive now
    itemsLeft = static_cast<std::uint64_t>(zip_get_num_entries(archive.get(), 0));
}

void ArchiveWriter::check(bool success, const std::string& what) const {
    if (!success)
        failZip(where, what, *zip_get_error(archive.get()));
}

void ArchiveWriter::remove(ItemIndex item) {
    check(zip_delete(archive.get(), item) == 0, "can't delete an item");
    --itemsLeft;
}

std::uint64_t ArchiveWriter::insert(const ZipContent& content) {
    SourcePtr source = makeSource(content.written());
    const std::vector<ItemIndex>& old = content.oldItems();
    if (old.size() == 1) {
        check(zip_file_replace(archive.get(), old.front(), source.get(), 0) == 0, "can't replace an item");
        source.release();
        return old.front();
    }
    for (const ItemIndex piece : old)
        remove(piece);
    const zip_int64_t item =
        zip_file_add(archive.get(), content.itemName().c_str(), source.get(), ZIP_FL_ENC_UTF_8);
    check(item >= 0, "can't add an item");
    source.release();
    ++itemsLeft;
    return static_cast<std::uint64_t>(item);
}

void ArchiveWriter::put(const ZipContent& content) {
    if (!content.written()->isWhole())
        fail(content.itemPlace(), "writing it has failed: it must be written again or deleted", EIO);
    const std::uint64_t item = insert(content);
    check(zip_set_file_compression(archive.get(), item, content.method(), content.level()) == 0,
          "can't set the compression of an item");
    if (deterministic)
        check(zip_file_set_dostime(archive.get(), item, FIXED_TIME, FIXED_DATE, 0) == 0,
              "can't set the time of an item");
}

void ArchiveWriter::finish() {
    if (itemsLeft == 0) {
        // libzip would remove the archive instead.
        if (const int error = out.writeAt(0, EMPTY_ARCHIVE.data(), EMPTY_ARCHIVE.size()))
            failSystem(where, "can't save", error);
        return;
    }
    check(zip_close(archive.get()) == 0, "can't save");
    archive.release();
}

} // namespace opc::physical::zip
