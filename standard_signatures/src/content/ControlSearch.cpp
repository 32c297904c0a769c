#include "content/ControlSearch.hpp"

#include <algorithm>

namespace opc::standard_signatures {

namespace {

// both begin with a capital letter, which is rare
constexpr std::string_view MARKS[] = {"Binding", "DOCTYPE"};
constexpr std::size_t LONGEST_MARK = 7;

bool holdsMark(std::string_view text) {
    return std::any_of(std::begin(MARKS), std::end(MARKS),
                       [text](std::string_view mark) { return text.find(mark) != std::string_view::npos; });
}

} // namespace

void ControlSearch::begin() {
    head.clear();
    tail.clear();
    hasMark = false;
}

void ControlSearch::look(const unsigned char* bytes, std::size_t count) {
    constexpr std::size_t HEAD = 256;
    constexpr std::size_t OVERLAP = LONGEST_MARK - 1;
    const std::string_view text(reinterpret_cast<const char*>(bytes), count);
    head += text.substr(0, HEAD - head.size());
    if (hasMark)
        return;
    tail += text.substr(0, OVERLAP);
    hasMark = holdsMark(tail) || holdsMark(text);
    if (text.size() >= OVERLAP)
        tail = text.substr(text.size() - OVERLAP);
    else
        tail.erase(0, tail.size() - std::min(tail.size(), OVERLAP));
}

/// Whether the content begins as XML, and says no encoding but UTF-8.
bool ControlSearch::isPlain(std::string_view head) {
    constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
    constexpr std::string_view DECLARATION = "<?xml";
    constexpr std::string_view NAME = "encoding";
    if (head.substr(0, BYTE_ORDER_MARK.size()) == BYTE_ORDER_MARK)
        head.remove_prefix(BYTE_ORDER_MARK.size());
    if (head.size() < 2 || head[0] != '<' || head[1] <= ' ')
        return false;
    if (head.substr(0, DECLARATION.size()) != DECLARATION)
        return true;
    const std::size_t end = head.find("?>");
    const std::size_t encoding = head.substr(0, end).find(NAME);
    if (end == std::string_view::npos || encoding == std::string_view::npos)
        return end != std::string_view::npos;
    const std::string_view value = head.substr(encoding + NAME.size(), end - encoding - NAME.size());
    return value.find(NAME) == std::string_view::npos &&
           (value.substr(0, 8) == "=\"UTF-8\"" || value.substr(0, 8) == "=\"utf-8\"");
}

} // namespace opc::standard_signatures
