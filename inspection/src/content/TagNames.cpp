#include "content/TagNames.hpp"

#include "subject/Names.hpp"
#include "text/CaselessText.hpp"

#include <algorithm>

namespace opc::inspection {

namespace {

constexpr std::size_t LONGEST_NAME = 256; // a prefix and a local name; longer ones aren't looked for

constexpr std::string_view EBCDIC_DECLARATION = "\x4C\x6F\xA7\x94"; // "<?xm"

bool endsName(char c) {
    return c == ' ' || c == '>' || c == '/' || c == '\t' || c == '\n' || c == '\r';
}

} // namespace

bool isAsciiCompatible(std::string_view head) {
    if (head.find('\0') < 4 || head.substr(0, 2) == "\xFE\xFF" || head.substr(0, 2) == "\xFF\xFE" ||
        head.substr(0, 4) == EBCDIC_DECLARATION)
        return false;
    const std::string_view declaration = head.substr(0, std::min(head.find("?>"), std::size_t(1024)));
    const std::size_t encoding = declaration.find("encoding");
    if (declaration.find("<?xml") > 3 || encoding == std::string_view::npos)
        return true;
    const std::size_t quote = declaration.find_first_of("'\"", encoding);
    if (quote == std::string_view::npos)
        return false;
    const std::string name = toLowerASCII(
        declaration.substr(quote + 1, declaration.find(declaration[quote], quote + 1) - quote - 1));
    return name == "utf-8" || name == "utf8" || name == "us-ascii" || name == "ascii" ||
           startsWith(name, "iso-8859-") || startsWith(name, "windows-125");
}

bool looksLikeXml(std::string_view head) {
    if (head.substr(0, 3) == "\xEF\xBB\xBF")
        head.remove_prefix(3);
    else if (head.substr(0, 2) == "\xFE\xFF" || head.substr(0, 2) == "\xFF\xFE")
        head.remove_prefix(2);
    const std::size_t first = head.find_first_not_of(std::string_view(" \t\r\n\0", 5)); // zeros: UTF-16
    return first != std::string_view::npos &&
           (head[first] == '<' || head.substr(first, 4) == EBCDIC_DECLARATION);
}

TagNames::TagNames(std::vector<std::string_view> names) : names(std::move(names)) {
    for (const std::string_view name : this->names) {
        const auto first = static_cast<unsigned char>(name[0]);
        firstLetters[first / 32U] |= 1U << first % 32U;
    }
}

void TagNames::begin(std::string_view head) {
    seen = 0;
    cut.clear();
    isOpaque = !isAsciiCompatible(head);
}

bool TagNames::only(std::initializer_list<std::string_view> some) const {
    std::uint64_t others = seen;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (std::find(some.begin(), some.end(), names[i]) != some.end())
            others &= ~(std::uint64_t{1} << i);
    return !isOpaque && others == 0;
}

void TagNames::add(std::string_view piece) {
    if (isOpaque)
        return;
    if (!cut.empty()) {
        const auto end =
            static_cast<std::size_t>(std::find_if(piece.begin(), piece.end(), endsName) - piece.begin());
        cut.append(piece.substr(0, std::min(end, LONGEST_NAME)));
        if (end < piece.size() || cut.size() > LONGEST_NAME) {
            addName(std::string_view(cut).substr(1));
            cut.clear();
        }
    }
    for (std::size_t tag = piece.find('<'); tag != std::string_view::npos; tag = piece.find('<', tag + 1)) {
        std::size_t end = tag + 1;
        while (end < piece.size() && !endsName(piece[end]) && end - tag <= LONGEST_NAME)
            ++end;
        if (end == piece.size()) {
            cut.assign(piece.substr(tag));
            return;
        }
        addName(piece.substr(tag + 1, end - tag - 1));
    }
}

void TagNames::addName(std::string_view text) {
    const std::string_view local = text.substr(text.rfind(':') + 1);
    if (local.empty())
        return;
    const auto first = static_cast<unsigned char>(local[0]);
    if ((firstLetters[first / 32U] >> first % 32U & 1U) == 0)
        return;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i] == local)
            seen |= std::uint64_t{1} << i;
}

} // namespace opc::inspection
