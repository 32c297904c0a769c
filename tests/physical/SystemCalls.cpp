#include "SystemCalls.hpp"

#include <sys/types.h>

#include <cerrno>

std::function<int(const std::string&, int)> opc::test::SystemCalls::before;

// The test program is linked so that these replace the system's own functions (see CMakeLists.txt). Those for 64-bit
// offsets are what all sources are compiled to call.
#define WRAP(result, call, file, parameters, arguments)                                                      \
    extern "C" result __real_##call parameters;                                                              \
    extern "C" result __wrap_##call parameters {                                                             \
        if (opc::test::SystemCalls::before) {                                                                \
            if (const int error = opc::test::SystemCalls::before(#call, file)) {                             \
                errno = error;                                                                               \
                return -1;                                                                                   \
            }                                                                                                \
        }                                                                                                    \
        return __real_##call arguments;                                                                      \
    }

WRAP(int, fchmod, file, (int file, mode_t mode), (file, mode))
WRAP(int, fchown, file, (int file, uid_t owner, gid_t group), (file, owner, group))
WRAP(int, flock, file, (int file, int operation), (file, operation))
WRAP(int, fsetxattr, file, (int file, const char* name, const void* value, size_t size, int flags),
     (file, name, value, size, flags))
WRAP(int, fsync, file, (int file), (file))
WRAP(ssize_t, pread64, file, (int file, void* buffer, size_t count, off_t offset),
     (file, buffer, count, offset))
WRAP(ssize_t, pwrite64, file, (int file, const void* buffer, size_t count, off_t offset),
     (file, buffer, count, offset))
WRAP(int, renameat, from, (int from, const char* name, int to, const char* newName),
     (from, name, to, newName))
