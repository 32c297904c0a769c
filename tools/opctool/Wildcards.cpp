#include "Wildcards.hpp"

namespace opctool {

namespace {

unsigned char lowerOf(char c) {
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

/// @param set  what stands between the brackets
bool isInSet(std::string_view set, unsigned char c) {
    const bool negated = set[0] == '!' || set[0] == '^';
    bool isIn = false;
    for (std::size_t i = negated ? 1 : 0; i < set.size(); ++i) {
        const bool isRange = i + 2 < set.size() && set[i + 1] == '-';
        const unsigned char first = lowerOf(set[i]);
        if (isRange)
            i += 2;
        isIn = isIn || (c >= first && c <= lowerOf(set[i]));
    }
    return isIn != negated;
}

/// How many characters at the beginning of the pattern, which has no star there, match the one of the text; 0 if they don't.
std::size_t matchOne(std::string_view pattern, char c) {
    if (pattern.empty())
        return 0;
    if (pattern[0] == '?')
        return 1;
    if (pattern[0] == '[') {
        const std::size_t first = pattern.size() > 1 && (pattern[1] == '!' || pattern[1] == '^') ? 2 : 1;
        const std::size_t end = pattern.find(']', first + 1); // one that comes first is itself in the set
        if (end != std::string_view::npos)
            return isInSet(pattern.substr(1, end - 1), lowerOf(c)) ? end + 1 : 0;
    }
    return lowerOf(pattern[0]) == lowerOf(c) ? 1 : 0;
}

} // namespace

bool matchesWildcards(std::string_view pattern, std::string_view text) {
    std::size_t inPattern = 0;
    std::size_t inText = 0;
    std::size_t star = std::string_view::npos; // the last one, and the text that it doesn't take
    std::size_t afterStar = 0;
    while (inText < text.size()) {
        if (inPattern < pattern.size() && pattern[inPattern] == '*') {
            star = inPattern++;
            afterStar = inText;
        } else if (const std::size_t count = matchOne(pattern.substr(inPattern), text[inText])) {
            inPattern += count;
            ++inText;
        } else if (star != std::string_view::npos) {
            inPattern = star + 1;
            inText = ++afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', inPattern) == std::string_view::npos;
}

} // namespace opctool
