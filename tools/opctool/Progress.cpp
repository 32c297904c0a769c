#include "Progress.hpp"

#include "Terminal.hpp"

#include <iostream>

namespace opctool {

namespace {

constexpr std::chrono::milliseconds DELAY(1000);
constexpr std::chrono::milliseconds INTERVAL(200);

} // namespace

Progress::Progress(bool countsFiles)
    : isTerminal(opctool::isTerminal(StandardStream::Errors)), countsFiles(countsFiles),
      nextUpdate(Clock::now() + DELAY) {
}

Progress::~Progress() {
    erase();
}

void Progress::hide() {
    pause([] {});
}

void Progress::pause(const std::function<void()>& print) {
    const std::lock_guard<std::mutex> lock(mutex);
    erase();
    print();
}

void Progress::add(std::uint64_t count) {
    bytes += count;
    if (isTerminal)
        show();
}

void Progress::addFile() {
    ++files;
    if (isTerminal)
        show();
}

void Progress::show() {
    const std::lock_guard<std::mutex> lock(mutex);
    if (Clock::now() < nextUpdate)
        return;
    constexpr std::uint64_t MEBIBYTE = std::uint64_t{1024} * 1024;
    std::cerr << '\r';
    if (countsFiles)
        std::cerr << files << " files, ";
    std::cerr << bytes / MEBIBYTE << " MiB read" << std::flush;
    isShown = true;
    nextUpdate = Clock::now() + INTERVAL;
}

void Progress::erase() {
    if (isShown)
        std::cerr << "\r\033[K" << std::flush;
    isShown = false;
}

} // namespace opctool
