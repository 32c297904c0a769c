#include "xml/AttributeCount.hpp"

#include <opc/model/Errors.hpp>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

namespace opc::model {

namespace {

/// How the names of encodings begin whose characters of markup are one unit each, and part of no other character.
constexpr std::u16string_view KNOWN[] = {
    u"UTF-8",       u"UTF8",  u"UTF-16",        u"UTF16",     u"UTF-32",    u"UCS-",
    u"US-ASCII",    u"ASCII", u"ISO-10646-UCS", u"ISO-8859-", u"ISO_8859-", u"LATIN",
    u"WINDOWS-125", u"CP125", u"KOI8-",         u"EUC-",      u"TIS-620"};

constexpr unsigned char NO_ASCII = 0x80; ///< stands for all other characters

} // namespace

bool AttributeCount::knows(const char16_t* encoding) {
    std::u16string name(encoding);
    std::transform(name.begin(), name.end(), name.begin(), [](char16_t c) {
        return static_cast<char16_t>(c >= u'a' && c <= u'z' ? c - u'a' + u'A' : c);
    });
    return name.empty() ||
           std::any_of(std::begin(KNOWN), std::end(KNOWN), [&name](std::u16string_view known) {
               return name.compare(0, known.size(), known) == 0;
           });
}

void AttributeCount::pass(const unsigned char* bytes, std::size_t count) {
    if (total == 0)
        units = DocumentUnits::of(bytes, count);
    if (units.size == 1) {
        total += count;
        std::for_each(bytes, bytes + count, [this](unsigned char byte) { take(byte); });
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const auto place = static_cast<std::size_t>(total++ % units.size);
        const bool isLow = place == (units.isHighFirst ? units.size - 1 : 0);
        (isLow ? low : others) |= bytes[i];
        if (place == units.size - 1) {
            take(others == 0 ? low : NO_ASCII);
            low = others = 0;
        }
    }
}

void AttributeCount::take(unsigned char character) {
    const bool isAfterTwo = last == beforeLast; // of the same
    switch (place) {
    case Within::Text:
        if (character == '<')
            place = Within::Start;
        break;
    case Within::Start:
        attributes = 0;
        place = character == '!' ? Within::Exclamation : character == '?' ? Within::Instruction : Within::Tag;
        break;
    case Within::Exclamation:
        if (character == 'D')
            fail(DOCUMENT_TYPE);
        place = character == '-' ? Within::Dash : character == '[' ? Within::CData : Within::Tag;
        character = 0;
        break;
    case Within::Dash:
        place = Within::Comment;
        character = 0; // it isn't of those that end the comment
        break;
    case Within::Tag:
        takeInTag(character);
        break;
    case Within::Value:
        if (character == quote)
            place = Within::Tag;
        break;
    case Within::Comment:
        if (character == '>' && last == '-' && isAfterTwo)
            place = Within::Text;
        break;
    case Within::CData:
        if (character == '>' && last == ']' && isAfterTwo)
            place = Within::Text;
        break;
    case Within::Instruction:
        if (character == '>' && last == '?')
            place = Within::Text;
        break;
    }
    line += character == '\r' || (character == '\n' && last != '\r') ? 1 : 0;
    beforeLast = last;
    last = character;
}

void AttributeCount::takeInTag(unsigned char character) {
    if (character == '"' || character == '\'') {
        quote = character;
        place = Within::Value;
    } else if (character == '>') {
        place = Within::Text;
    } else if (character == '<') {
        place = Within::Start;
    } else if (character == '=') {
        countAttribute();
    }
}

void AttributeCount::countAttribute() {
    constexpr std::size_t MANY = 100;
    constexpr std::uint64_t MOST_COMPARISONS = 10'000'000;
    constexpr std::uint64_t COMPARISONS_OF_A_BYTE = 3; // so that tables with wide rows may have any length
    if (++attributes > MOST)
        fail(TOO_MANY);
    if (attributes <= MANY)
        return;
    comparisons += attributes;
    if (comparisons > MOST_COMPARISONS + COMPARISONS_OF_A_BYTE * total)
        fail(TOO_OFTEN_MANY);
}

void AttributeCount::fail(const char* reason) const {
    InvalidXMLDocument failure(reason);
    failure.addDetails("line " + std::to_string(line));
    throw failure;
}

} // namespace opc::model
