#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <exception>

namespace bench {

/// Runs `action`, which returns a number, in a process of its own.
/// @return the number; -1 if the action threw an exception
template <typename Action>
double inChild(Action&& action) {
    int ends[2];
    double result = -1;
    if (::pipe(ends) != 0)
        return result;
    const pid_t child = ::fork();
    if (child == 0) {
        try {
            result = action();
        } catch (const std::exception&) {
        }
        ::_exit(::write(ends[1], &result, sizeof result) == sizeof result ? 0 : 1);
    }
    ::close(ends[1]);
    if (child < 0 || ::read(ends[0], &result, sizeof result) != sizeof result)
        result = -1;
    ::close(ends[0]);
    ::waitpid(child, nullptr, 0);
    return result;
}

} // namespace bench
