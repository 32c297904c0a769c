#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace opc::standard_signatures {

/// Looks for the names of parts in contents of whatever format, in which programs of other formats than those of office programs
/// find them by their path. It finds the last segment of a name anywhere: in ASCII, UTF-8, UTF-16 or UTF-32, in any letter case,
/// percent-encoded, as character references, and with white space or markup in between.
class NameSearch {
public:
    /// @param keys      plain names in lower case. What is beyond `MOST` counts as found
    /// @param mostWork  bytes that begin or continue something, once for each 64 places of names. Behind them all count as found
    explicit NameSearch(const std::vector<std::string_view>& keys, std::uint64_t mostWork = 1U << 29U);

    static constexpr std::size_t MOST = 50;

    /// Begins with another content.
    void begin();

    /// Looks into the next bytes of the content.
    void look(const unsigned char* bytes, std::size_t count);

    /// Whether a name was found so far, by its place among the keys.
    bool isFound(std::size_t index) const;

private:
    /// Some names whose segments are found by shifting bits: one of each place says whether what was read ends with the segment
    /// up to there.
    struct Group {
        std::array<std::uint64_t, 256> places{}; ///< by character
        std::uint64_t first = 0;                 ///< places
        std::uint64_t reached = 0;
        std::uint64_t interrupted = 0; ///< reached before markup
        std::uint64_t found = 0;
    };
    struct Place {
        std::size_t group;
        std::uint64_t last; ///< one bit
    };
    /// A character reference that is being read (XML 1.0 section 4.1), as far as programs agree on what is one.
    struct Reference {
        enum class State { None, Begun, Number } state = State::None;
        bool hasDigits = false;
        bool isNegative = false;
        unsigned base = 10;
        std::uint32_t number = 0; ///< without what doesn't fit

        bool take(unsigned char byte);
        unsigned char end();
    };

    const unsigned char* skip(const unsigned char* bytes, const unsigned char* end) const;
    void readByte(unsigned char byte);
    void readCharacter(unsigned char c);
    void compare(unsigned char c);

    std::vector<Group> groups;
    std::vector<Place> ends; ///< by name
    std::uint64_t workLeft;
    static constexpr unsigned FIRST = 1;    ///< of a segment
    static constexpr unsigned SECOND = 2;   ///< in a segment, or something special
    static constexpr unsigned SPECIAL = 8;  ///< can begin something else than a segment
    std::array<unsigned char, 256> kinds{}; ///< by byte
    bool isIdle = true;                     ///< nothing is begun

    Reference reference;
    int digits = -1; ///< that were read behind a percent sign; negative: there is none
    unsigned encoded = 0;
};

} // namespace opc::standard_signatures
