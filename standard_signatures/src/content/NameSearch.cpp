#include "content/NameSearch.hpp"

#include "names/HexDigit.hpp"

#include <algorithm>
#include <string>

namespace opc::standard_signatures {

namespace {

constexpr std::size_t BITS = 64;
constexpr std::size_t LONGEST = 20; ///< the end of a segment is enough

unsigned char lower(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c - 'A' + 'a') : c;
}

/// Some programs drop such white space in a URI, and UTF-16 has zeros.
bool isPassedOver(unsigned char c) {
    return c == 0 || c == '\t' || c == '\r' || c == '\n';
}

} // namespace

NameSearch::NameSearch(const std::vector<std::string_view>& keys, std::uint64_t mostWork)
    : workLeft(mostWork) {
    std::string special = "%&";
    std::size_t used = BITS;
    for (const std::string_view key : keys) {
        if (ends.size() == MOST)
            break;
        std::string_view segment = key.substr(key.rfind('/') + 1);
        segment.remove_prefix(segment.size() - std::min(segment.size(), LONGEST));
        if (used + segment.size() > BITS) {
            groups.emplace_back();
            used = 0;
        }
        Group& group = groups.back();
        group.first |= std::uint64_t{1} << used;
        for (const char c : segment)
            group.places[static_cast<unsigned char>(c)] |= std::uint64_t{1} << used++;
        if (segment.size() == 1) // it is whole, whatever follows it
            special += segment;
        ends.push_back({groups.size() - 1, std::uint64_t{1} << (used - 1)});
    }
    const auto isAmong = [](std::string_view characters, unsigned char c) {
        return characters.find(static_cast<char>(c)) != std::string_view::npos;
    };
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const unsigned char c = lower(static_cast<unsigned char>(i));
        bool isFirst = false;
        bool isSecond = isPassedOver(c) || isAmong("%&<>[]", c);
        for (const Group& one : groups) {
            isFirst = isFirst || (one.places[c] & one.first) != 0;
            isSecond = isSecond || (one.places[c] & one.first << 1U) != 0;
        }
        kinds[i] = static_cast<unsigned char>((isFirst ? FIRST : 0U) | (isSecond ? SECOND : 0U) |
                                              (isAmong(special, c) ? SPECIAL : 0U));
    }
}

void NameSearch::begin() {
    for (Group& one : groups)
        one.reached = one.interrupted = 0;
    kinds['>'] &= static_cast<unsigned char>(~SPECIAL);
    kinds['['] &= static_cast<unsigned char>(~SPECIAL);
    isIdle = true;
    reference = {};
    digits = -1;
}

void NameSearch::look(const unsigned char* bytes, std::size_t count) {
    const unsigned char* const end = bytes + count;
    while (bytes != end && workLeft != 0) {
        if (isIdle)
            bytes = skip(bytes, end);
        if (bytes == end)
            return;
        readByte(*bytes++);
        workLeft -= std::min<std::uint64_t>(workLeft, groups.size());
    }
}

/// Passes over what begins nothing, some bytes at once where it can. It never passes over the last byte, whose next one isn't known.
const unsigned char* NameSearch::skip(const unsigned char* bytes, const unsigned char* end) const {
    constexpr unsigned STEP = 8;
    constexpr std::uint64_t EACH = 0x0101010101010101;
    static_assert(FIRST == 1 && SECOND == 2);
    for (; end - bytes > std::ptrdiff_t{STEP}; bytes += STEP) {
        std::uint64_t all = 0; // the kinds of these bytes, the first one lowest
        for (unsigned i = 0; i < STEP; ++i)
            all |= std::uint64_t{kinds[bytes[i]]} << 8 * i;
        const std::uint64_t next = all >> 8 | std::uint64_t{kinds[bytes[STEP]]} << 8 * (STEP - 1);
        if ((all & (EACH * SPECIAL | (next >> 1 & EACH))) != 0)
            break;
    }
    const auto begins = [this](const unsigned char* at) -> unsigned {
        return kinds[at[0]] & (SPECIAL | kinds[at[1]] >> 1U);
    };
    while (end - bytes > 1 && begins(bytes) == 0)
        ++bytes;
    return bytes;
}

bool NameSearch::isFound(std::size_t index) const {
    return workLeft == 0 || index >= ends.size() || (groups[ends[index].group].found & ends[index].last) != 0;
}

void NameSearch::readByte(unsigned char byte) {
    if (isPassedOver(byte))
        return;
    isIdle = false;
    if (reference.take(byte))
        return;
    if (reference.state != Reference::State::None) {
        const bool isWhole = byte == ';' && reference.hasDigits;
        readCharacter(reference.end());
        if (isWhole)
            return;
        isIdle = false;
    }
    if (!reference.take(byte))
        readCharacter(byte);
}

/// Takes a byte that belongs to it. Some programs take numbers as `strtol` does: with a sign, space or 0x in front.
bool NameSearch::Reference::take(unsigned char byte) {
    const int digit = hexDigitOf(byte);
    if (state != State::Number) {
        const bool isBegun = state == State::Begun;
        if (static_cast<char>(byte) != (isBegun ? '#' : '&'))
            return false;
        *this = Reference();
        state = isBegun ? State::Number : State::Begun;
    } else if (digit >= 0 && static_cast<unsigned>(digit) < base) {
        number = number * base + static_cast<unsigned>(digit);
        hasDigits = true;
    } else if (lower(byte) == 'x' && number == 0)
        base = 16;
    else if (!hasDigits && (byte == ' ' || byte == '+' || byte == '-'))
        isNegative = isNegative || byte == '-';
    else
        return false;
    return true;
}

/// @return the character, or what isn't in any name
unsigned char NameSearch::Reference::end() {
    constexpr std::uint32_t OTHER = 0x80;
    const std::uint32_t character = isNegative ? 0 - number : number;
    const bool isCharacter = hasDigits;
    *this = Reference();
    return static_cast<unsigned char>(isCharacter ? std::min(character, OTHER) : OTHER);
}

/// Resolves what is percent-encoded, also twice.
void NameSearch::readCharacter(unsigned char c) {
    if (digits >= 0) {
        const int digit = hexDigitOf(c);
        if (digit >= 0) {
            encoded = encoded * 16 + static_cast<unsigned>(digit);
            if (++digits < 2)
                return;
            c = static_cast<unsigned char>(encoded);
        } else
            compare('%');
        digits = -1;
    }
    if (c == '%') {
        digits = 0;
        encoded = 0;
    } else
        compare(c);
}

void NameSearch::compare(unsigned char c) {
    if (isPassedOver(c))
        return;
    const bool isEnd = c == '>' || c == '[';       // of markup, perhaps: comments, instructions, elements,
    const bool isBeginning = c == '<' || c == ']'; // and the marks of a CDATA section
    isIdle = reference.state == Reference::State::None && digits < 0;
    for (Group& one : groups) {
        if (isBeginning && one.reached != 0) {
            one.interrupted |= one.reached;
            kinds['>'] |= SPECIAL;
            kinds['['] |= SPECIAL;
        }
        one.reached = ((one.reached << 1U) | one.first) & one.places[lower(c)];
        if (isEnd)
            one.reached |= one.interrupted;
        one.found |= one.reached;
        isIdle = isIdle && one.reached == 0;
    }
}

} // namespace opc::standard_signatures
