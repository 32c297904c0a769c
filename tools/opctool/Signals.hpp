#pragma once

namespace opctool {

/// Makes signals that end the process, such as that of Ctrl+C, remove the temporary files and restore the terminal.
void leaveNothingBehindOnSignals();

/// Holds back signals while it lives, for short work that must not be left half done. Only one at a time.
class WithoutSignals {
public:
    WithoutSignals() noexcept;
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;
    ~WithoutSignals();
};

} // namespace opctool
