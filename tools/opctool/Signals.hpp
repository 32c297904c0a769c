#pragma once

#include <csignal>

namespace opctool {

/// Makes signals that end the process, such as that of Ctrl+C, remove the temporary files and restore the terminal.
void leaveNothingBehindOnSignals();

/// Holds back signals while it lives, for short work that must not be left half done.
class WithoutSignals {
public:
    WithoutSignals() noexcept;
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;
    ~WithoutSignals();

private:
    sigset_t before;
};

} // namespace opctool
