#pragma once

#include <sys/stat.h>

namespace opc::physical::zip {

/// Distinguishes a file from other files, and from itself before a change.
struct FileIdentity {
    FileIdentity() = default;
    explicit FileIdentity(const struct stat& status)
        : device(status.st_dev), number(status.st_ino), size(status.st_size), written(status.st_mtim) {}

    bool operator==(const FileIdentity& other) const {
        return device == other.device && number == other.number && size == other.size &&
               written.tv_sec == other.written.tv_sec && written.tv_nsec == other.written.tv_nsec;
    }

    dev_t device = 0;
    ino_t number = 0; ///< 0: no file
    off_t size = 0;
    timespec written{};
};

} // namespace opc::physical::zip
