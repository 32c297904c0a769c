#pragma once

#include <functional>
#include <string>

namespace opc::test {

/// Calls of the system: pread, and those that saving makes: fchmod, fchown, flock, fsetxattr, fsync, pwrite, renameat.
struct SystemCalls {
    /// Runs in front of each, with its name and its descriptor. The call fails with what this gives, unless
    /// that is 0.
    static std::function<int(const std::string& call, int file)> before;
};

} // namespace opc::test
