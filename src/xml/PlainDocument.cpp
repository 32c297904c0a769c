#include "xml/PlainDocument.hpp"

#include <algorithm>

namespace opc::model {

namespace {

constexpr bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
constexpr bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// What may stand in an attribute value as it is: printable ASCII without `<` and `&`.
constexpr bool isPlainValueChar(char c) {
    return c >= ' ' && c <= '~' && c != '<' && c != '&';
}

constexpr bool isPathChar(char c) {
    return isLetter(c) || isDigit(c) || c == '-' || c == '.' || c == '_' || c == '~' || c == '/';
}

class Reader {
public:
    explicit Reader(std::string_view document) : text(document) {}

    bool atEnd() const { return position == text.size(); }

    bool isAt(std::string_view expected) const {
        return text.compare(position, expected.size(), expected) == 0;
    }

    bool take(std::string_view expected) {
        if (!isAt(expected))
            return false;
        position += expected.size();
        return true;
    }

    /// @return whether there was any
    bool skipSpace() {
        const std::size_t begin = position;
        while (!atEnd() && isSpace(text[position]))
            ++position;
        return position != begin;
    }

    /// A name of ASCII letters; empty if there is none.
    std::string_view takeName() {
        const std::size_t begin = position;
        while (!atEnd() && isLetter(text[position]))
            ++position;
        return text.substr(begin, position - begin);
    }

    /// An equals sign and a value between quotes.
    bool takeValue(std::string_view& value) {
        skipSpace();
        if (!take("="))
            return false;
        skipSpace();
        if (atEnd() || (text[position] != '"' && text[position] != '\''))
            return false;
        const char quote = text[position++];
        const std::size_t begin = position;
        while (!atEnd() && text[position] != quote && isPlainValueChar(text[position]))
            ++position;
        value = text.substr(begin, position - begin);
        return !atEnd() && text[position++] == quote;
    }

private:
    std::string_view text;
    std::size_t position = 0;
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
bool takeAttributes(Reader& reader, std::vector<PlainAttribute>& attributes, bool& isEmpty) {
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
        const auto isSame = [&](const PlainAttribute& other) { return other.name == attribute.name; };
        if (std::any_of(attributes.begin(), attributes.end(), isSame))
            return false;
        attributes.push_back(attribute);
    }
}

bool takeEndTag(Reader& reader, std::string_view name) {
    if (!reader.take("</") || reader.takeName() != name)
        return false;
    reader.skipSpace();
    return reader.take(">");
}

bool takeChildren(Reader& reader, std::string_view root, const PlainChildVisitor& visitChild) {
    std::vector<PlainAttribute> attributes;
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
                         [](char c) { return isLetter(c) || isDigit(c) || c == '-'; }))
            return false;
        if (dot == std::string_view::npos)
            return isLetter(label.front());
        text.remove_prefix(dot + 1);
    }
}

} // namespace

bool visitPlainDocument(const std::vector<unsigned char>& document, std::string_view root,
                        std::string_view namespaceURI, const PlainChildVisitor& visitChild) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): what isn't ASCII isn't plain
    Reader reader(std::string_view(reinterpret_cast<const char*>(document.data()), document.size()));
    reader.take("\xEF\xBB\xBF");
    if (!skipDeclaration(reader))
        return false;
    reader.skipSpace();
    std::vector<PlainAttribute> attributes;
    bool isEmpty = false;
    if (!reader.take("<") || reader.takeName() != root || !takeAttributes(reader, attributes, isEmpty))
        return false;
    if (attributes.size() != 1 || attributes.front().name != "xmlns" ||
        attributes.front().value != namespaceURI)
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
    const auto isNameChar = [](char c) {
        return isLetter(c) || isDigit(c) || c == '_' || c == '-' || c == '.';
    };
    return !text.empty() && (isLetter(text.front()) || text.front() == '_') &&
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
        return std::all_of(text.begin(), text.end(), isPathChar);
    }
    return text.compare(0, 2, "//") != 0 && std::all_of(text.begin(), text.end(), isPathChar);
}

} // namespace opc::model
