#include "Signals.hpp"

#include "Terminal.hpp"

#include <opc/physical/UnfinishedFiles.hpp>

#include <mutex>

#include <windows.h>

namespace opctool {

namespace {

std::mutex shortWork;

/// The system calls it in a thread of its own, and ends the process when it returns.
BOOL WINAPI endByEvent(DWORD /*event*/) {
    shortWork.lock(); // for good: nothing else begins
    opc::physical::removeUnfinishedFiles();
    showTyping();
    return FALSE;
}

} // namespace

void leaveNothingBehindOnSignals() {
    ::SetConsoleCtrlHandler(endByEvent, TRUE);
}

WithoutSignals::WithoutSignals() noexcept {
    shortWork.lock();
}

WithoutSignals::~WithoutSignals() {
    shortWork.unlock();
}

} // namespace opctool
