#include "canonical/CanonicalText.hpp"

#include <cstdint>
#include <cstring>

namespace opc::standard_signatures {

namespace {

/// Whether none of eight bytes needs a look of its own: they are ASCII, and neither markup nor quotes nor control characters.
/// Examines all of them at once.
bool areEightPlain(const char* bytes) {
    constexpr std::uint64_t EACH = 0x0101010101010101;
    constexpr std::uint64_t TOP_BITS = 0x80 * EACH;
    std::uint64_t all = 0;
    std::memcpy(&all, bytes, sizeof all);
    // If all are ASCII, a term has a top bit only if one of them is a character that the term looks for. `<` and `>` differ in
    // one bit.
    const auto has = [](std::uint64_t characters, char sought) {
        return (characters ^ (static_cast<unsigned char>(sought) * EACH)) - EACH;
    };
    const std::uint64_t found =
        all | (all - ' ' * EACH) | has(all, '"') | has(all, '&') | has(all | 2 * EACH, '>');
    return (found & TOP_BITS) == 0;
}

std::string_view referenceTo(char c) {
    switch (c) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\t':
        return "&#x9;";
    case '\n':
        return "&#xA;";
    default:
        return "&#xD;";
    }
}

} // namespace

const CanonicalText::Specials CanonicalText::TEXT = specialsOf("&<>\r");
const CanonicalText::Specials CanonicalText::VALUE = specialsOf("&<\"\t\n\r");

void CanonicalText::putEscaped(std::string_view value, const Specials& specials) {
    const char* p = value.data();
    const char* const end = p + value.size();
    for (;;) {
        const char* const begin = p;
        while (end - p >= 8 && areEightPlain(p))
            p += 8;
        while (p != end && !specials[static_cast<unsigned char>(*p)])
            ++p;
        put({begin, static_cast<std::size_t>(p - begin)});
        if (p == end)
            return;
        put(referenceTo(*p++));
    }
}

} // namespace opc::standard_signatures
