#include "xml/PlainDocument.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace opc::model {

namespace {

/// What a character may be part of: bits, so that a set of them is a mask.
enum Kind : std::uint8_t {
    Space = 1,
    Letter = 2,
    Digit = 4,
    Path = 8,          // of a URI, without escapes
    DoubleQuoted = 16, // an attribute value as it is: printable ASCII without `<`, `&` and the quote
    SingleQuoted = 32,
};

constexpr std::array<std::uint8_t, 256> classify() {
    std::array<std::uint8_t, 256> kinds{};
    for (const char c : std::string_view(" \t\r\n"))
        kinds[static_cast<unsigned char>(c)] = Space;
    for (unsigned char c = ' '; c <= '~'; ++c)
        if (c != '<' && c != '&')
            kinds[c] |= (c != '"' ? DoubleQuoted : 0) | (c != '\'' ? SingleQuoted : 0);
    for (unsigned char c = 'a'; c <= 'z'; ++c) {
        kinds[c] |= Letter | Path;
        kinds[c - 'a' + 'A'] |= Letter | Path;
    }
    for (unsigned char c = '0'; c <= '9'; ++c)
        kinds[c] |= Digit | Path;
    for (const char c : std::string_view("-._~/"))
        kinds[static_cast<unsigned char>(c)] |= Path;
    return kinds;
}

constexpr std::array<std::uint8_t, 256> KINDS = classify();

constexpr bool is(char c, unsigned kinds) {
    return (KINDS[static_cast<unsigned char>(c)] & kinds) != 0;
}

/// Whether all characters are of these kinds.
bool areAll(std::string_view text, unsigned kinds) {
    return std::all_of(text.begin(), text.end(), [kinds](char c) { return is(c, kinds); });
}

class Reader {
public:
    explicit Reader(std::string_view document) : rest(document) {}

    bool atEnd() const { return rest.empty(); }

    bool isAt(std::string_view expected) const { return rest.substr(0, expected.size()) == expected; }

    bool take(std::string_view expected) {
        if (!isAt(expected))
            return false;
        rest.remove_prefix(expected.size());
        return true;
    }

    /// @return whether there was any
    bool skipSpace() { return !takeAll(Space).empty(); }

    /// A name of ASCII letters; empty if there is none.
    std::string_view takeName() { return takeAll(Letter); }

    /// An equals sign and a value between quotes.
    bool takeValue(std::string_view& value) {
        skipSpace();
        if (!take("="))
            return false;
        skipSpace();
        if (take("\"")) {
            value = takeAll(DoubleQuoted);
            return take("\"");
        }
        if (!take("'"))
            return false;
        value = takeAll(SingleQuoted);
        return take("'");
    }

private:
    /// The longest run of characters of these kinds.
    std::string_view takeAll(unsigned kinds) {
        std::size_t end = 0;
        while (end < rest.size() && is(rest[end], kinds))
            ++end;
        const std::string_view taken = rest.substr(0, end);
        rest.remove_prefix(end);
        return taken;
    }

    std::string_view rest;
};

bool skipDeclaration(Reader& reader) {
    if (!reader.take("<?xml"))
        return true;
    constexpr std::string_view NAMES[] = {"version", "encoding", "standalone"};
    std::size_t next = 0; // they stand in this order, and the first one must be there
    while (reader.skipSpace()) {
        const std::string_view name = reader.takeName();
        if (name.empty())
            break;
        const auto* const found = std::find(std::begin(NAMES) + next, std::end(NAMES), name);
        if (found == std::end(NAMES) || (next == 0 && name != "version"))
            return false;
        next = static_cast<std::size_t>(found - std::begin(NAMES)) + 1;
        std::string_view value;
        if (!reader.takeValue(value))
            return false;
        const bool isUsual = name == "version"    ? value == "1.0"
                             : name == "encoding" ? value == "UTF-8" || value == "utf-8"
                                                  : value == "yes" || value == "no";
        if (!isUsual)
            return false;
    }
    return next != 0 && reader.take("?>");
}

/// Reads up to the end of a start tag.
/// @param isEmpty  set to whether the tag ends the element too
bool takeAttributes(Reader& reader, PlainAttributes& attributes, bool& isEmpty) {
    attributes.clear();
    for (;;) {
        const bool spaced = reader.skipSpace();
        isEmpty = reader.take("/>");
        if (isEmpty || reader.take(">"))
            return true;
        PlainAttribute attribute;
        attribute.name = reader.takeName();
        if (!spaced || attribute.name.empty() || !reader.takeValue(attribute.value))
            return false;
        if (!attributes.add(attribute))
            return false;
    }
}

bool takeEndTag(Reader& reader, std::string_view name) {
    if (!reader.take("</") || reader.takeName() != name)
        return false;
    reader.skipSpace();
    return reader.take(">");
}

bool takeChildren(Reader& reader, std::string_view root, const PlainChildVisitor& visitChild) {
    PlainAttributes attributes;
    for (;;) {
        reader.skipSpace();
        if (reader.isAt("</"))
            return takeEndTag(reader, root);
        if (!reader.take("<"))
            return false;
        const std::string_view name = reader.takeName();
        bool isEmpty = false;
        if (name.empty() || !takeAttributes(reader, attributes, isEmpty) ||
            (!isEmpty && !takeEndTag(reader, name)) || !visitChild(name, attributes))
            return false;
    }
}

/// Whether a text is a host's name: labels of letters and digits, with hyphens inside, and the last one
/// beginning with a letter (RFC 2396 section 3.2.2).
bool isHostName(std::string_view text) {
    for (;;) {
        const std::size_t dot = text.find('.');
        const std::string_view label = text.substr(0, dot);
        if (label.empty() || label.front() == '-' || label.back() == '-')
            return false;
        if (!std::all_of(label.begin(), label.end(),
                         [](char c) { return is(c, Letter | Digit) || c == '-'; }))
            return false;
        if (dot == std::string_view::npos)
            return is(label.front(), Letter);
        text.remove_prefix(dot + 1);
    }
}

} // namespace

bool PlainAttributes::add(const PlainAttribute& attribute) {
    const auto isSame = [&](const PlainAttribute& other) { return other.name == attribute.name; };
    if (count == attributes.size() || std::any_of(begin(), end(), isSame))
        return false;
    attributes[count++] = attribute;
    return true;
}

bool visitPlainDocument(std::string_view document, std::string_view root, std::string_view namespaceURI,
                        const PlainChildVisitor& visitChild) {
    Reader reader(document);
    reader.take("\xEF\xBB\xBF");
    if (!skipDeclaration(reader))
        return false;
    reader.skipSpace();
    PlainAttributes attributes;
    bool isEmpty = false;
    if (!reader.take("<") || reader.takeName() != root || !takeAttributes(reader, attributes, isEmpty))
        return false;
    if (attributes.size() != 1 || attributes.begin()->name != "xmlns" ||
        attributes.begin()->value != namespaceURI)
        return false;
    if (!isEmpty && !takeChildren(reader, root, visitChild))
        return false;
    reader.skipSpace();
    return reader.atEnd();
}

std::u16string widen(std::string_view value) {
    return std::u16string(value.begin(), value.end());
}

bool isPlainID(std::string_view text) {
    const auto isNameChar = [](char c) { return is(c, Letter | Digit) || c == '_' || c == '-' || c == '.'; };
    return !text.empty() && (is(text.front(), Letter) || text.front() == '_') &&
           std::all_of(text.begin(), text.end(), isNameChar);
}

bool isPlainURI(std::string_view text) {
    if (text.empty())
        return false;
    for (const std::string_view scheme : {std::string_view("http://"), std::string_view("https://")}) {
        if (text.compare(0, scheme.size(), scheme) != 0)
            continue;
        text.remove_prefix(scheme.size());
        const std::size_t end = std::min(text.find('/'), text.size());
        if (!isHostName(text.substr(0, end)))
            return false;
        text.remove_prefix(end);
        return areAll(text, Path);
    }
    return text.compare(0, 2, "//") != 0 && areAll(text, Path);
}

} // namespace opc::model
