#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>

namespace opctool {

/// Tells on a terminal's standard error how much has been read, once that takes a while. Writes nothing if standard
/// error is no terminal. Several threads may use it at the same time.
class Progress {
public:
    /// @param countsFiles  whether it tells the number of files, too
    explicit Progress(bool countsFiles = false);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void add(std::uint64_t bytes);
    void addFile();

    /// Removes the line, as the destructor does.
    void hide();

    /// Takes the line away and calls `print`, while nobody brings the line back.
    void pause(const std::function<void()>& print);

private:
    using Clock = std::chrono::steady_clock;

    void show();
    void erase();

    const bool isTerminal;
    const bool countsFiles;
    std::atomic<std::uint64_t> bytes{0};
    std::atomic<std::uint64_t> files{0};
    std::mutex mutex;
    bool isShown = false;
    Clock::time_point nextUpdate;
};

} // namespace opctool
