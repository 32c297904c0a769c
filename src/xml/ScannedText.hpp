#pragma once

#include <cstddef>
#include <cstdint>

namespace opc::model {

/// What a scanner makes of a piece of a document.
enum class Scanned {
    Taken,
    Incomplete, ///< its end isn't at hand
    NotPlain    ///< it breaks a rule, or isn't of the usual form
};

/// Where a document is, as its reader counts lines and columns.
struct ScannedLines {
    std::uint64_t line = 1;
    std::uint64_t lineStart =
        0; ///< its offset; moved on by what characters take more as bytes than as UTF-16

    /// @param character  a carriage return or a line feed: both in sequence are one break
    void addBreak(char character, std::uint64_t offsetBehind) {
        if (character != '\n' || offsetBehind != behindReturn + 1)
            ++line;
        lineStart = offsetBehind;
        behindReturn = character == '\r' ? offsetBehind : 0;
    }
    std::uint64_t columnAt(std::uint64_t offset) const { return offset - lineStart + 1; }

private:
    std::uint64_t behindReturn = 0; ///< where the last break ends, if it is a carriage return so far
};

/// Decodes one character of a document.
/// @param at  moved behind it if it is taken
Scanned decodeCharacter(const char*& at, const char* end, std::uint32_t& code);

/// Decodes a reference to a character, or to one of the five entities of XML.
/// @param at  at its ampersand; moved behind it if it is taken
Scanned decodeReference(const char*& at, const char* end, std::uint32_t& code);

/// Writes a character as one code unit or two.
/// @return the place behind them
char16_t* putCharacter(std::uint32_t code, char16_t* target);

} // namespace opc::model
