#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace opc::standard_signatures {

/// Looks for references by number to characters of ASCII that need none (XML 1.0 section 4.1), in UTF-8 or UTF-16. Programs that
/// don't resolve them read other values. Writers make them of other characters only.
class NeedlessReferences {
public:
    /// @param bytes  the next ones of the document
    /// @return whether they end one
    bool find(const unsigned char* bytes, std::size_t count) {
        const unsigned char* const end = bytes + count;
        while (bytes != end) {
            if (state == State::None) {
                bytes = static_cast<const unsigned char*>(
                    std::memchr(bytes, '&', static_cast<std::size_t>(end - bytes)));
                if (bytes == nullptr)
                    return false;
            }
            if (take(*bytes++))
                return true;
        }
        return false;
    }

private:
    enum class State { None, Ampersand, Number };

    bool take(unsigned char byte) {
        const int digit = byte >= '0' && byte <= '9'   ? byte - '0'
                          : byte >= 'A' && byte <= 'F' ? byte - 'A' + 10
                          : byte >= 'a' && byte <= 'f' ? byte - 'a' + 10
                                                       : 16;
        if (byte == 0) // of UTF-16
            return false;
        if (byte == '&')
            state = State::Ampersand;
        else if (state == State::Ampersand && byte == '#') {
            state = State::Number;
            base = 10;
            number = 0;
        } else if (state == State::Number && byte == 'x' && number == 0)
            base = 16;
        else if (state == State::Number && static_cast<unsigned>(digit) < base)
            number = number < MOST ? number * base + static_cast<unsigned>(digit) : MOST;
        else {
            const bool isNeedless =
                state == State::Number && byte == ';' && number >= ' ' && number <= '~' &&
                std::string_view("&<>\"'").find(static_cast<char>(number)) == std::string_view::npos;
            state = State::None;
            return isNeedless;
        }
        return false;
    }

    static constexpr std::uint32_t MOST = 0x110000;

    State state = State::None;
    unsigned base = 10;
    std::uint32_t number = 0;
};

} // namespace opc::standard_signatures
