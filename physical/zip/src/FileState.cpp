#include <opc/physical/FileState.hpp>

#include <sys/stat.h>

namespace opc::physical {

FileState::FileState(const struct ::stat& status)
    : device(status.st_dev), number(status.st_ino), size(static_cast<std::uint64_t>(status.st_size)),
      seconds(status.st_mtim.tv_sec), nanoseconds(status.st_mtim.tv_nsec) {
}

} // namespace opc::physical
