#include "removing/PartPattern.hpp"

#include <utility>

namespace opc::editing {

namespace {

char16_t lowered(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

} // namespace

PartPattern::PartPattern(std::u16string_view pattern) {
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != u'*') {
            tokens.push_back({Token::Kind::Character, lowered(pattern[i])});
            continue;
        }
        const bool isDouble = i + 1 < pattern.size() && pattern[i + 1] == u'*';
        tokens.push_back({isDouble ? Token::Kind::Across : Token::Kind::InSegment});
        i += isDouble ? 1 : 0;
    }
}

bool PartPattern::matches(std::u16string_view name) const {
    std::vector<bool> reached(tokens.size() + 1); // the tokens before each place match what was read so far
    const auto reach = [&](std::size_t place) {
        for (reached[place] = true; place < tokens.size() && tokens[place].kind != Token::Kind::Character;
             ++place)
            reached[place + 1] = true; // a star may stand for nothing
    };
    reach(0);
    for (const char16_t unit : name) {
        const std::vector<bool> before = std::exchange(reached, std::vector<bool>(tokens.size() + 1));
        for (std::size_t place = 0; place < tokens.size(); ++place) {
            const Token& token = tokens[place];
            if (!before[place])
                continue;
            if (token.kind == Token::Kind::Across || (token.kind == Token::Kind::InSegment && unit != u'/'))
                reach(place);
            else if (token.kind == Token::Kind::Character && token.character == lowered(unit))
                reach(place + 1);
        }
    }
    return reached[tokens.size()];
}

} // namespace opc::editing
