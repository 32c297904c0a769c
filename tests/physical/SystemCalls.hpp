#pragma once

#include <functional>
#include <string>

namespace opc::test {

/// System calls: pread, and those that saving makes: fchmod, fchown, flock, fsetxattr, fsync, pwrite, renameat.
struct SystemCalls {
    /// Runs before each call, with its name and its descriptor. If the result isn't 0, the call fails with it.
    static std::function<int(const std::string& call, int file)> before;
};

} // namespace opc::test
