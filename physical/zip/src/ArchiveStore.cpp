#include "ArchiveStore.hpp"

#include "Failure.hpp"
#include "ReplacementFile.hpp"
#include "SystemFiles.hpp"

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

namespace opc::physical::zip {

namespace fs = std::filesystem;

namespace {

void requireRegular(const std::string& place, const FileStatus& status) {
    if (status.kind == FileKind::Folder)
        failSystem(place, "can't open", EISDIR);
    if (status.kind != FileKind::Regular)
        fail(place, "can't open: not a regular file", EINVAL);
}

/// Files up to this size are read at once: that covers nearly every document, and costs less than reading pieces.
constexpr std::uint64_t LARGEST_READ_WHOLE = 128L << 10;

/// Null if the file can't be read as a whole.
std::shared_ptr<ByteSource> readWhole(const FileDescriptor& file, const FileState& state) {
    const auto size = static_cast<std::size_t>(state.size);
    const std::shared_ptr<unsigned char> bytes(new unsigned char[size],
                                               std::default_delete<unsigned char[]>());
    std::size_t got = 0;
    if (file.readAt(0, bytes.get(), size, got) != 0 || got != size)
        return nullptr;
    return std::make_shared<MemoryBytes>(bytes, size, state);
}

class MemoryTarget : public ByteTarget {
public:
    int writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) noexcept override {
        try {
            if (bytes.size() < offset + count)
                bytes.resize(static_cast<std::size_t>(offset + count));
        } catch (const std::exception&) {
            return ENOMEM;
        }
        std::copy_n(buffer, count, bytes.data() + offset);
        return 0;
    }

    std::vector<unsigned char> bytes;
};

} // namespace

FileStore::FileStore(fs::path file, BeforeReplacing beforeReplacing)
    : name(file.string()), path(std::move(file)), beforeReplacing(std::move(beforeReplacing)) {
    if (name.compare(0, 1, "/") == 0) // an absolute path
        return;
    std::error_code error;
    fs::path absolute = fs::absolute(path, error);
    if (!error)
        path = std::move(absolute);
}

std::shared_ptr<ByteSource> FileStore::read() {
    FileDescriptor file;
    FileStatus status;
    if (const int error = openForReading(path, file))
        failSystem(place(), "can't open", error);
    if (const int error = readStatus(file, status))
        failSystem(place(), "can't open", error);
    requireRegular(place(), status);
    if (status.state.size <= LARGEST_READ_WHOLE)
        if (auto whole = readWhole(file, status.state))
            return whole;
    return std::make_shared<FileBytes>(std::move(file), status.state);
}

void FileStore::checkWritable() const {
    FileStatus status;
    const int missing = readStatus(path, status);
    if (missing == 0) {
        requireRegular(place(), status);
        // Renaming needs only permissions of the folder, but a read-only file mustn't be replaced either.
        if (const int error = zip::checkWritable(path))
            failSystem(place(), "can't write", error);
    } else if (missing != ENOENT) {
        failSystem(place(), "can't open", missing);
    } else if (const int error = readStatus(temporaryFolder(), status)) {
        failSystem(place(), "can't open its folder", error);
    }
}

void FileStore::replace(const FileState& old, const std::function<void(ByteTarget&)>& write) {
    const std::unique_ptr<ReplacementFile> file = ReplacementFile::make(path, place());
    write(*file);
    if (beforeReplacing)
        beforeReplacing(file->path());
    file->complete();
    if (old.isOfFile()) // as late as possible: syncing takes time
        requireUnchanged(old);
    file->putInPlace();
    lastWritten = file->state();
    file->syncFolder();
}

void FileStore::requireUnchanged(const FileState& old) const {
    FileStatus now;
    if (readStatus(path, now) != 0)
        return; // nothing there can be lost
    // If only the sync of the folder failed, the file there is the one that this package has written.
    if (!(old == now.state) && !(lastWritten == now.state))
        fail(place(), "has been changed by another program since it was opened", CHANGED_MEANWHILE);
}

fs::path FileStore::temporaryFolder() const {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

std::shared_ptr<ByteSource> MemoryStore::read() {
    if (archive->empty())
        failSystem(place(), "can't open", ENOENT);
    return std::make_shared<MemoryBytes>(std::shared_ptr<const unsigned char>(archive, archive->data()),
                                         archive->size());
}

void MemoryStore::replace(const FileState& /*old*/, const std::function<void(ByteTarget&)>& write) {
    MemoryTarget target;
    write(target);
    archive = std::make_shared<const Bytes>(std::move(target.bytes));
}

fs::path systemTemporaryFolder() {
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    return error ? fs::path("/tmp") : folder;
}

} // namespace opc::physical::zip
