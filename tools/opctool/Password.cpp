#include "Password.hpp"

#include "Terminal.hpp"

#include <opc/core/Exception.hpp>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace opctool {

namespace {

/// Hides what is typed on the terminal while it lives. Only one at a time.
class WithoutEcho {
public:
    WithoutEcho() { hideTyping(); }
    WithoutEcho(const WithoutEcho&) = delete;
    WithoutEcho& operator=(const WithoutEcho&) = delete;
    ~WithoutEcho() { showTyping(); }
};

} // namespace

Password::Password(const std::string& file) {
    constexpr std::size_t USUAL = 256;
    text.reserve(USUAL); // so that growing leaves no copy of it behind
    if (!file.empty()) {
        std::ifstream stream(std::filesystem::path(file), std::ios::binary);
        if (!stream)
            throw opc::Exception(file + " can't be read",
                                 {errno != 0 ? errno : EIO, boost::system::generic_category()});
        readFrom(stream);
    } else if (isTerminal(StandardStream::Input)) {
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
