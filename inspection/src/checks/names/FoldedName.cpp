#include <opc/inspection/FoldedName.hpp>

#include <opc/core/Text.hpp>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace opc::inspection {

namespace {

constexpr char16_t FIRST = 0x00C0;

/// The letters from U+00C0 to U+017F that are a basic letter with an accent: the letter, in lower case; a blank for others.
constexpr std::string_view LETTERS =
    "aaaaaa ceeeeiiii nooooo  uuuuy  aaaaaa ceeeeiiii nooooo  uuuuy yaaaaaaccccccccdd  eeeeeeeeeegggg"
    "gggghh  iiiiiiiii   jjkk llllll    nnnnnn   oooooo  rrrrrrsssssssstttt  uuuuuuuuuuuuwwyyyzzzzzz ";

/// Their accents, as places in `ACCENTS`.
constexpr std::string_view PLACES =
    "abcdhi labchabch dabcdh  abchb  abcdhi labchabch dabcdh  abchb heeffmmbbccggkkkk  eeffggmmkkccff"
    "ggllcc  ddeeffmmg   ccll bbllkk    bbllkk   eeffjj  bbllkkbbccllkkllkk  ddeeffiijjmmcccchbbggkk ";

constexpr char16_t ACCENTS[] = {0x0300, 0x0301, 0x0302, 0x0303, 0x0304, 0x0306, 0x0307,
                                0x0308, 0x030A, 0x030B, 0x030C, 0x0327, 0x0328};

/// Letters that fold to others, by the full case folding of Unicode.
struct Folding {
    char16_t letter;
    const char16_t* folded;
};
constexpr Folding FOLDINGS[] = {
    {0x00B5, u"\u03BC"},  {0x00DF, u"ss"},  {0x0149, u"\u02BCn"}, {0x017F, u"s"},
    {0x03C2, u"\u03C3"},  {0x1E9E, u"ss"},  {0x2126, u"\u03C9"},  {0x212A, u"k"},
    {0x212B, u"a\u030A"}, {0xFB00, u"ff"},  {0xFB01, u"fi"},      {0xFB02, u"fl"},
    {0xFB03, u"ffi"},     {0xFB04, u"ffl"}, {0xFB05, u"st"},      {0xFB06, u"st"},
};

const char16_t* foldingOf(char16_t c) {
    const auto* const found =
        std::lower_bound(std::begin(FOLDINGS), std::end(FOLDINGS), c,
                         [](const Folding& folding, char16_t letter) { return folding.letter < letter; });
    return found != std::end(FOLDINGS) && found->letter == c ? found->folded : nullptr;
}

/// Letters of the Greek and the Cyrillic alphabet in lower case.
char16_t toLower(char16_t c) {
    if (c >= 0x0391 && c <= 0x03A9)
        return static_cast<char16_t>(c + 0x20);
    if (c >= 0x0410 && c <= 0x042F)
        return static_cast<char16_t>(c + 0x20);
    if (c >= 0x0400 && c <= 0x040F)
        return static_cast<char16_t>(c + 0x50);
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c;
}

} // namespace

std::u16string foldedName(const std::string& name) {
    std::u16string folded;
    for (const char16_t c : opc::toString(name, true)) {
        const std::size_t place = c >= FIRST ? c - FIRST : LETTERS.size();
        if (const char16_t* const folding = foldingOf(c)) {
            folded += folding;
        } else if (place < LETTERS.size() && LETTERS[place] != ' ') {
            folded += static_cast<char16_t>(LETTERS[place]);
            folded += ACCENTS[PLACES[place] - 'a'];
        } else {
            folded += toLower(c);
        }
    }
    return folded;
}

} // namespace opc::inspection
