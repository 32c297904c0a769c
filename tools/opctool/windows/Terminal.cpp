#include "Terminal.hpp"

#include <atomic>

#include <io.h>
#include <windows.h>

namespace opctool {

namespace {

std::atomic<DWORD> shown{0}; ///< the console's settings before typing was hidden
std::atomic<bool> isQuiet{false};

} // namespace

bool isTerminal(StandardStream stream) noexcept {
    const auto handle = reinterpret_cast<HANDLE>(::_get_osfhandle(static_cast<int>(stream)));
    DWORD mode = 0;
    return ::GetConsoleMode(handle, &mode) != 0; // a device such as NUL is no console
}

void hideTyping() noexcept {
    const HANDLE console = ::GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (::GetConsoleMode(console, &mode) == 0)
        return;
    shown = mode;
    isQuiet = true;
    ::SetConsoleMode(console, mode & ~DWORD{ENABLE_ECHO_INPUT});
}

void showTyping() noexcept {
    if (isQuiet.exchange(false))
        ::SetConsoleMode(::GetStdHandle(STD_INPUT_HANDLE), shown);
}

} // namespace opctool
