#pragma once

#include <csignal>

namespace opctool {

/// From now on a signal that ends the process, such as that of Ctrl+C, leaves no temporary file behind, and
/// no terminal that doesn't show what is typed.
void leaveNothingBehindOnSignals();

/// While it lives, signals wait: for what is short and must not be left half done.
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
