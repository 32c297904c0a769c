#include "ArchiveReader.hpp"

#include "ArchiveSource.hpp"
#include "Failure.hpp"

namespace opc::physical::zip {

ArchiveReader::ArchiveReader(std::shared_ptr<ByteSource> bytes, std::string archivePlace)
    : where(std::move(archivePlace)) {
    SourcePtr source = makeSource(std::move(bytes));
    zip_error_t error;
    zip_error_init(&error);
    archive.reset(zip_open_from_source(source.get(), ZIP_RDONLY, &error));
    if (!archive)
        failZip(where, "can't read the directory of the archive", error);
    source.release(); // belongs to the archive now
}

std::uint64_t ArchiveReader::itemCount() const {
    return static_cast<std::uint64_t>(zip_get_num_entries(archive.get(), 0));
}

ItemStatus ArchiveReader::status(ItemIndex item) const {
    zip_stat_t status;
    if (zip_stat_index(archive.get(), item, 0, &status) != 0)
        failZip(where, "can't read the directory of the archive", *zip_get_error(archive.get()));
    return {status.name, status.size, status.comp_size, status.comp_method,
            status.encryption_method != ZIP_EM_NONE};
}

ItemFile ArchiveReader::open(ItemIndex item) const {
    ItemFile file(zip_fopen_index(archive.get(), item, 0));
    if (!file)
        failZip(itemPlace(item), "can't read", *zip_get_error(archive.get()));
    return file;
}

std::string ArchiveReader::itemPlace(ItemIndex item) const {
    return zip::itemPlace(where, status(item).name);
}

} // namespace opc::physical::zip
