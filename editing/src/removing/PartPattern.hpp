#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace opc::editing {

/// A pattern for names of parts: `*` stands for any characters but slashes, and `**` for any. The case of ASCII letters
/// doesn't count.
class PartPattern {
public:
    explicit PartPattern(std::u16string_view pattern);

    /// Takes time in proportion to the length of the name times that of the pattern.
    bool matches(std::u16string_view name) const;

private:
    struct Token {
        enum class Kind { Character, InSegment, Across } kind;
        char16_t character = 0;
    };

    std::vector<Token> tokens;
};

} // namespace opc::editing
