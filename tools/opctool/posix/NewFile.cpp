#include "NewFile.hpp"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace opctool {

NewFile::NewFile(const std::string& name, Readers readers, bool replace)
    : finalPath(name), path(replace ? name + "." + std::to_string(::getpid()) : name),
      descriptor(
          ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                 readers == Readers::Owner ? S_IRUSR | S_IWUSR : S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH)) {
    if (descriptor < 0)
        fail();
}

NewFile::~NewFile() {
    ::close(descriptor);
    if (!kept)
        ::unlink(path.c_str());
}

void NewFile::write(const std::vector<unsigned char>& bytes) const {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (count < 0)
            fail();
        done += static_cast<std::size_t>(count);
    }
    if (::fsync(descriptor) != 0 && errno != EINVAL) // EINVAL: the file can't be synced
        fail();
}

void NewFile::keep() {
    if (path != finalPath && ::rename(path.c_str(), finalPath.c_str()) != 0)
        fail();
    kept = true;
}

} // namespace opctool
