#include "Terminal.hpp"

#include <csignal>

#include <termios.h>
#include <unistd.h>

namespace opctool {

namespace {

// Here the handler of a signal finds it.
termios shown{}; ///< the terminal's settings before typing was hidden
volatile std::sig_atomic_t isQuiet = 0;

} // namespace

bool isTerminal(StandardStream stream) noexcept {
    return isatty(static_cast<int>(stream)) == 1;
}

void hideTyping() noexcept {
    if (tcgetattr(STDIN_FILENO, &shown) != 0)
        return;
    isQuiet = 1;
    termios quiet = shown;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
}

void showTyping() noexcept {
    if (isQuiet == 0)
        return;
    isQuiet = 0;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown);
}

} // namespace opctool
