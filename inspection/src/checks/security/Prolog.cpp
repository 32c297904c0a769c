#include "checks/security/Prolog.hpp"

#include "text/CaselessText.hpp"

#include <algorithm>
#include <iterator>

namespace opc::inspection {

namespace {

constexpr std::size_t MOST = 512; // characters of a declaration that are kept

} // namespace

void Prolog::begin() {
    state = State::Between;
    doctype = false;
    next = tag = {1, 1};
    text.clear();
}

void Prolog::add(std::string_view piece) {
    for (std::size_t i = 0; i < piece.size() && state != State::Over; ++i)
        if (piece[i] != '\0') { // the other half of an ASCII character in UTF-16
            add(piece[i]);
            advance(static_cast<unsigned char>(piece[i]));
        }
}

void Prolog::advance(unsigned char c) {
    constexpr unsigned char BYTE_ORDER_MARK[] = {0xEF, 0xFE, 0xFF};
    const bool isMark =
        next.line == 1 && next.column == 1 &&
        std::find(std::begin(BYTE_ORDER_MARK), std::end(BYTE_ORDER_MARK), c) != std::end(BYTE_ORDER_MARK);
    if (c == '\n')
        next = {next.line + 1, 1};
    else if ((c & 0xC0U) != 0x80U && !isMark) // one byte of each character
        ++next.column;
}

void Prolog::add(char c) {
    switch (state) {
    case State::Between:
        if (c == '<') {
            state = State::Tag;
            tag = next;
            text.clear();
        }
        break;
    case State::Tag:
        text += c;
        if (text == "!--")
            state = State::Comment;
        else if (text == "?")
            state = State::Instruction;
        else if (startsWith(text, "!doctype")) {
            state = State::Doctype;
            doctype = true;
        } else if (text[0] != '!' || text.size() > 8)
            state = State::Over;
        break;
    case State::Comment:
    case State::Instruction: {
        text += c;
        const std::string_view end = state == State::Comment ? "-->" : "?>";
        if (endsWith(text, end))
            state = State::Between;
        else if (text.size() > end.size())
            text.erase(0, text.size() - end.size());
        break;
    }
    case State::Doctype:
        text += c;
        if (text.size() >= MOST)
            state = State::Over;
        break;
    case State::Over:
        break;
    }
}

} // namespace opc::inspection
