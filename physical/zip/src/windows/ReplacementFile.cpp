#include "zip/src/ReplacementFile.hpp"

#include "Handles.hpp"
#include "zip/src/Failure.hpp"
#include "zip/src/SystemFiles.hpp"
#include "zip/src/TemporaryName.hpp"

#include <opc/physical/UnfinishedFiles.hpp>

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <random>
#include <system_error>
#include <vector>

namespace opc::physical::zip {

namespace fs = std::filesystem;

namespace {

/// The number of names that are tried, and how many of them always are the same.
constexpr unsigned NAMES = 20;
constexpr unsigned FORETOLD_NAMES = 10;
constexpr std::size_t LONGEST_NAME = 255; ///< in units of UTF-16, of which UTF-8 never has fewer

/// The files that `removeUnfinishedFiles` removes. The system calls a handler for the end of a process in a thread of its
/// own, so it may wait for a lock.
struct UnfinishedFiles {
    std::mutex mutex;
    std::vector<const fs::path*> files;
};

UnfinishedFiles& unfinishedFiles() {
    static UnfinishedFiles all;
    return all;
}

fs::path resolve(const fs::path& path) {
    std::error_code error;
    fs::path real = fs::canonical(path, error);
    return error ? path : real;
}

/// A file that nobody else can open for writing until it is put in place.
class MovedFile : public ReplacementFile {
public:
    MovedFile(const fs::path& path, const std::string& place) : target(resolve(path)), place(place) {
        open();
    }
    MovedFile(const MovedFile&) = delete;
    MovedFile& operator=(const MovedFile&) = delete;
    ~MovedFile() override {
        if (!file.isOpen())
            return;
        forget();
        ::DeleteFileW(written.c_str());
    }

    int writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) noexcept override {
        return file.writeAt(offset, buffer, count);
    }
    fs::path path() const override { return written; }

    /// `ReplaceFileW` gives it the attributes of its target.
    void complete() override {
        if (const int error = file.sync())
            failSystem(place, "can't sync the new archive", error);
    }

    void putInPlace() override {
        forget();
        file = FileDescriptor(); // an open file can't be moved
        const bool isNew = ::GetFileAttributesW(target.c_str()) == INVALID_FILE_ATTRIBUTES;
        const bool inPlace = isNew
                                 ? ::MoveFileExW(written.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH) != 0
                                 : ::ReplaceFileW(target.c_str(), written.c_str(), nullptr,
                                                  REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0;
        if (const int error = errorOf(inPlace)) {
            ::DeleteFileW(written.c_str());
            failSystem(place, "can't replace the archive", error);
        }
        written = target;
    }

    /// The system keeps a journal of names.
    void syncFolder() override {}

    FileState state() const override {
        FileStatus status;
        return readStatus(written, status) == 0 ? status.state : FileState();
    }

private:
    void open() {
        std::random_device random;
        for (unsigned tried = 0; tried < NAMES; ++tried) {
            written =
                target.parent_path() / temporaryName(target.filename().string(),
                                                     tried < FORETOLD_NAMES ? tried : random(), LONGEST_NAME);
            if (create())
                return;
        }
        failSystem(place, "can't make a file in its folder", EEXIST);
    }

    /// @return false if another file has this name, and stays
    bool create() {
        UnfinishedFiles& all = unfinishedFiles();
        const std::lock_guard<std::mutex> lock(all.mutex);
        all.files.reserve(all.files.size() + 1);
        removeAbandoned();
        const int error = adopt(::CreateFileW(written.c_str(), GENERIC_READ | GENERIC_WRITE,
                                              FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                              FILE_ATTRIBUTE_NORMAL, nullptr),
                                file);
        if (error == 0)
            all.files.push_back(&written);
        else if (error != EEXIST)
            failSystem(place, "can't make a file in its folder", error);
        return error == 0;
    }

    /// What a process has left isn't open for writing anywhere.
    void removeAbandoned() {
        FileDescriptor abandoned;
        const int error =
            adopt(::CreateFileW(written.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr),
                  abandoned);
        if (error == EBUSY)
            failSystem(place, "is being saved by another process", EBUSY);
        if (error == 0)
            ::DeleteFileW(written.c_str());
    }

    void forget() noexcept {
        UnfinishedFiles& all = unfinishedFiles();
        const std::lock_guard<std::mutex> lock(all.mutex);
        all.files.erase(std::remove(all.files.begin(), all.files.end(), &written), all.files.end());
    }

    fs::path target;
    std::string place;
    fs::path written;
    FileDescriptor file;
};

} // namespace

std::unique_ptr<ReplacementFile> ReplacementFile::make(const fs::path& path, const std::string& place) {
    return std::make_unique<MovedFile>(path, place);
}

} // namespace opc::physical::zip

void opc::physical::removeUnfinishedFiles() noexcept {
    zip::UnfinishedFiles& all = zip::unfinishedFiles();
    const std::lock_guard<std::mutex> lock(all.mutex);
    for (const zip::fs::path* file : all.files)
        ::DeleteFileW(file->c_str());
}
