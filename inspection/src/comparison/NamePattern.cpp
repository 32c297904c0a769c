#include "comparison/NamePattern.hpp"

#include "subject/Names.hpp"

#include <vector>

namespace opc::inspection {

namespace {

constexpr char ANYTHING = '\1'; // can't be in a key

} // namespace

NamePattern::NamePattern(std::string_view text) {
    for (const char c : keyOfName(text))
        if (c == '*' && !pattern.empty() && (pattern.back() == '*' || pattern.back() == ANYTHING))
            pattern.back() = ANYTHING;
        else
            pattern += c;
}

bool NamePattern::matches(std::string_view key) const {
    std::vector<bool> reached(pattern.size() +
                              1); // what of the pattern can stand in front of the place in the key
    const auto passWildcards = [&] {
        for (std::size_t i = 0; i < pattern.size(); ++i)
            if (reached[i] && (pattern[i] == '*' || pattern[i] == ANYTHING))
                reached[i + 1] = true;
    };
    reached[0] = true;
    passWildcards();
    for (const char c : key) {
        for (std::size_t i = pattern.size() + 1; i-- > 0;) {
            const bool stays = i < pattern.size() && reached[i] &&
                               (pattern[i] == ANYTHING || (pattern[i] == '*' && c != '/'));
            reached[i] = stays || (i > 0 && reached[i - 1] && pattern[i - 1] == c && c != '*');
        }
        passWildcards();
    }
    return reached[pattern.size()];
}

} // namespace opc::inspection
