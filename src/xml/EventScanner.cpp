#include "xml/EventScanner.hpp"

#include "xml/PlainCharacters.hpp"

#include <algorithm>

namespace opc::model {

namespace {

constexpr std::size_t MOST_ASIDES = 5000; // half of what the parser refuses
constexpr std::string_view CDATA = "<![CDATA[";

bool isSpace(char c) {
    return plain::is(c, plain::Space);
}

bool begins(const char* at, const char* end, std::string_view expected) {
    return std::string_view(at, static_cast<std::size_t>(end - at)).substr(0, expected.size()) == expected;
}

/// Where a terminator stands; null if it isn't at hand.
const char* find(const char* at, const char* end, std::string_view terminator) {
    const std::size_t place = std::string_view(at, static_cast<std::size_t>(end - at)).find(terminator);
    return place == std::string_view::npos ? nullptr : at + place;
}

/// In text, these stand as they are: printable ASCII but for markup and a bracket.
constexpr bool isPlainText(char c) {
    return plain::is(c, plain::DoubleQuoted | plain::SingleQuoted) && c != ']';
}

} // namespace

EventScanner::EventScanner(InputStream& stream, XmlEvents& events) : window(stream), events(events) {
    constexpr std::size_t USUAL_COUNT = 8;
    openElements.reserve(USUAL_COUNT);
    attributes.reserve(USUAL_COUNT);
    declarations.reserve(USUAL_COUNT);
    hidden.reserve(USUAL_COUNT);
}

bool EventScanner::scan() {
    if (!scanDeclaration())
        return false;
    for (;;) {
        if (window.at == window.end && !window.more())
            return hasRoot && openElements.empty();
        switch (*window.at == '<' ? takeMarkup() : takeText()) {
        case Scanned::Taken:
            break;
        case Scanned::Incomplete:
            if (!window.more())
                return false;
            break;
        case Scanned::NotPlain:
            return false;
        }
    }
}

bool EventScanner::scanDeclaration() {
    constexpr std::ptrdiff_t LONGEST = 200;
    while (window.end - window.at < LONGEST && window.more()) {
    }
    if (begins(window.at, window.end, "\xEF\xBB\xBF")) {
        window.at += 3;
        lines.lineStart += 3;
    }
    if (!begins(window.at, window.end, "<?xml") || (window.end - window.at > 5 && !isSpace(window.at[5])))
        return true;
    const char* const end = find(window.at, std::min(window.end, window.at + LONGEST), "?>");
    if (end == nullptr || !takeDeclaration(window.at + 5, end))
        return false;
    window.at = end + 2;
    return true;
}

/// @param p  behind its name
bool EventScanner::takeDeclaration(const char* p, const char* declarationEnd) {
    const auto isBreak = [](char c) { return c == '\r' || c == '\n'; };
    if (std::any_of(p, declarationEnd, isBreak)) // the parser doesn't count these lines
        return false;
    while (skipSpace(p) && p < declarationEnd)
        if (takeAttribute(p) != Scanned::Taken)
            return false;
    if (p != declarationEnd || !declarations.empty())
        return false;
    std::string_view encoding;
    std::string_view last;
    for (const Attribute& attribute : attributes) {
        const std::string_view name = attribute.name->text;
        const std::string_view value = attribute.plain;
        const bool isRight =
            name == "version"    ? last.empty() && value == "1.0"
            : name == "encoding" ? last == "version" && (value == "UTF-8" || value == "utf-8")
            : name == "standalone"
                ? (last == "version" || last == "encoding") && (value == "yes" || value == "no")
                : false;
        if (!isRight || attribute.value.data() != nullptr)
            return false;
        last = name;
        if (name == "encoding")
            encoding = value;
    }
    if (last.empty())
        return false;
    toldEvents.declaration = true;
    events.onVersion(u"1.0");
    events.onDeclaration(std::u16string(encoding.begin(), encoding.end()));
    return true;
}

Scanned EventScanner::takeMarkup() {
    if (window.end - window.at < 2)
        return Scanned::Incomplete;
    const ScannedLines before = lines;
    Scanned result = Scanned::NotPlain;
    if (window.at[1] == '/')
        result = takeEndTag();
    else if (window.at[1] == '?')
        result = takeInstruction();
    else if (window.at[1] != '!')
        result = takeStartTag();
    else if (begins(window.at, window.end, "<!--"))
        result = takeComment();
    else if (begins(window.at, window.end, CDATA))
        return takeCharacterData();
    else if (window.end - window.at < static_cast<std::ptrdiff_t>(CDATA.size()))
        result = Scanned::Incomplete;
    if (result == Scanned::Incomplete)
        lines = before;
    return result;
}

Scanned EventScanner::takeText() {
    const char* const begin = window.at;
    const Scanned result = takeTextRun();
    return result == Scanned::Incomplete && window.at != begin ? Scanned::Taken : result;
}

/// Takes text up to the next markup, as far as it is at hand.
Scanned EventScanner::takeTextRun() {
    const char* p = window.at;
    if (openElements.empty()) { // only white space may stand there
        skipSpace(p);
        if (p == window.at)
            return Scanned::NotPlain;
        spaceOutside += static_cast<std::size_t>(p - window.at);
        window.at = p;
        return spaceOutside > LONGEST_TAG ? Scanned::NotPlain : Scanned::Taken;
    }
    while (p != window.end && *p != '<') {
        if (textSize >= LONGEST_PIECE)
            tellText();
        if (isPlainText(*p)) {
            putPlainText(p);
        } else {
            const ScannedLines before = lines;
            std::uint32_t code = 0;
            const Scanned result = *p == '&'   ? decodeReference(p, window.end, code)
                                   : *p == ']' ? takeBracket(p, code)
                                               : takeOddCharacter(p, code);
            if (result != Scanned::Taken) {
                lines = before;
                return result;
            }
            putText(code);
        }
        window.at = p;
    }
    return Scanned::Taken;
}

void EventScanner::putPlainText(const char*& p) {
    const char* const last = std::min(window.end, p + (LONGEST_PIECE - textSize));
    const char* const end = std::find_if_not(p, last, isPlainText);
    std::copy(p, end, text.data() + textSize); // ASCII, with vector instructions
    textSize += static_cast<std::size_t>(end - p);
    p = end;
}

void EventScanner::putText(std::uint32_t code) {
    textSize = static_cast<std::size_t>(putCharacter(code, text.data() + textSize) - text.data());
}

/// A bracket may stand in text, but not in front of another one and `>`.
Scanned EventScanner::takeBracket(const char*& p, std::uint32_t& code) {
    if (window.end - p < 3)
        return Scanned::Incomplete;
    if (p[1] == ']' && p[2] == '>')
        return Scanned::NotPlain;
    ++p;
    code = ']';
    return Scanned::Taken;
}

Scanned EventScanner::takeCharacterData() {
    const char* p = window.at + CDATA.size();
    const char* const textEnd = find(p, window.end, "]]>");
    if (openElements.empty())
        return Scanned::NotPlain;
    if (textEnd == nullptr)
        return Scanned::Incomplete;
    while (p != textEnd) {
        if (textSize >= LONGEST_PIECE)
            tellText();
        std::uint32_t code = 0;
        if (takeOddCharacter(p, code) != Scanned::Taken)
            return Scanned::NotPlain;
        putText(code);
    }
    window.at = textEnd + 3;
    return Scanned::Taken;
}

void EventScanner::tellText() {
    if (textSize == 0)
        return;
    const std::size_t size = textSize;
    textSize = 0;
    toldEvents.text += size;
    events.onText({text.data(), size});
}

Scanned EventScanner::takeComment() {
    const char* p = window.at + 4;
    const char* const textEnd = find(p, window.end, "--");
    if (textEnd == nullptr || window.end - textEnd < 3)
        return Scanned::Incomplete;
    std::u16string comment;
    if (textEnd[2] != '>' || ++asides > MOST_ASIDES || !takeCharacters(p, textEnd, comment))
        return Scanned::NotPlain;
    tellText();
    window.at = textEnd + 3;
    tellMarkup();
    events.onComment(comment);
    return Scanned::Taken;
}

Scanned EventScanner::takeInstruction() {
    const char* p = window.at + 2;
    const char* const textEnd = find(p, window.end, "?>");
    if (textEnd == nullptr)
        return Scanned::Incomplete;
    const ScannedName* target = nullptr;
    if (takeName(p, target) != Scanned::Taken || target->hasPrefix() || ++asides > MOST_ASIDES)
        return Scanned::NotPlain;
    const bool isReserved = target->text.size() >= 3 && (target->text[0] | 0x20) == 'x' &&
                            (target->text[1] | 0x20) == 'm' && (target->text[2] | 0x20) == 'l';
    const bool hasData = skipSpace(p);
    std::u16string data;
    if (isReserved || (p != textEnd && !hasData) || !takeCharacters(p, textEnd, data))
        return Scanned::NotPlain;
    tellText();
    window.at = textEnd + 2;
    tellMarkup();
    events.onInstruction(std::u16string(target->text.begin(), target->text.end()), data);
    return Scanned::Taken;
}

/// @return whether all characters up to there are valid
bool EventScanner::takeCharacters(const char*& p, const char* textEnd, std::u16string& taken) {
    while (p < textEnd) {
        std::uint32_t code = 0;
        if (takeOddCharacter(p, code) != Scanned::Taken)
            return false;
        std::array<char16_t, 2> units{};
        taken.append(units.data(), putCharacter(code, units.data()));
    }
    return p == textEnd;
}

/// Counts the markup that is told now.
void EventScanner::tellMarkup() {
    ++toldEvents.markup;
    toldEvents.text = 0;
}

/// Any character that stands for itself. Line breaks of each kind are one.
Scanned EventScanner::takeOddCharacter(const char*& p, std::uint32_t& code) {
    if (*p == '\r') {
        if (window.end - p < 2)
            return Scanned::Incomplete;
        p += p[1] == '\n' ? 1 : 0;
        code = '\n';
        lines.addBreak('\n', window.offsetOf(++p));
        return Scanned::Taken;
    }
    const char* const begin = p;
    if (const Scanned result = decodeCharacter(p, window.end, code); result != Scanned::Taken)
        return result;
    if (code == '\n')
        lines.addBreak('\n', window.offsetOf(p));
    lines.lineStart += static_cast<std::uint64_t>(p - begin) - (code < 0x10000 ? 1 : 2);
    return Scanned::Taken;
}

/// @return whether there was any
bool EventScanner::skipSpace(const char*& p) {
    const char* const begin = p;
    for (; p != window.end && isSpace(*p); ++p)
        if (*p == '\n' || *p == '\r')
            lines.addBreak(*p, window.offsetOf(p + 1));
    return p != begin;
}

} // namespace opc::model
