#include "Password.hpp"

#include <opc/core/Exception.hpp>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <iostream>

#include <termios.h>
#include <unistd.h>

namespace opctool {

namespace {

// Here the handler of a signal finds it.
termios shown{}; ///< the terminal's settings before typing was hidden
volatile std::sig_atomic_t isQuiet = 0;

/// Hides what is typed on the terminal while it lives. Only one at a time.
class WithoutEcho {
public:
    WithoutEcho() {
        if (tcgetattr(STDIN_FILENO, &shown) != 0)
            return;
        isQuiet = 1;
        termios quiet = shown;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
    }
    WithoutEcho(const WithoutEcho&) = delete;
    WithoutEcho& operator=(const WithoutEcho&) = delete;
    ~WithoutEcho() { showTyping(); }
};

} // namespace

void showTyping() noexcept {
    if (isQuiet == 0)
        return;
    isQuiet = 0;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown);
}

Password::Password(const std::string& file) {
    constexpr std::size_t USUAL = 256;
    text.reserve(USUAL); // so that growing leaves no copy of it behind
    if (!file.empty()) {
        std::ifstream stream(file, std::ios::binary);
        if (!stream)
            throw opc::Exception(file + " can't be read",
                                 {errno != 0 ? errno : EIO, boost::system::generic_category()});
        readFrom(stream);
    } else if (isatty(STDIN_FILENO) == 1) {
        std::cerr << "Password: " << std::flush;
        const WithoutEcho quiet;
        readFrom(std::cin);
        std::cerr << '\n';
    }
}

Password::~Password() {
    for (char& character : text)
        static_cast<volatile char&>(character) = 0;
}

void Password::readFrom(std::istream& stream) {
    std::getline(stream, text);
    if (!text.empty() && text.back() == '\r')
        text.pop_back();
}

} // namespace opctool
