#include "Markup.hpp"

#include "ScopedMap.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <cstdint>

namespace opc::physical::lenient {

namespace {

[[noreturn]] void refuse() {
    throw Exception("The document is not well-formed.");
}

std::uint32_t digitOf(char16_t unit) {
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    const auto lower = static_cast<char16_t>(unit | 0x20);
    if (lower >= u'a' && lower <= u'f')
        return lower - u'a' + 10U;
    refuse();
}

/// @param digits  the part of a character reference between `&#` and the semicolon
void appendCharacter(std::u16string& text, std::u16string_view digits) {
    const bool isHexadecimal = !digits.empty() && digits.front() == u'x';
    std::uint32_t value = 0;
    for (const char16_t digit : digits.substr(isHexadecimal ? 1 : 0)) {
        value = value * (isHexadecimal ? 16 : 10) + digitOf(digit);
        if (value > 0x10FFFF)
            refuse();
    }
    if (value >= 0x10000) {
        text.push_back(static_cast<char16_t>(0xD7C0 + (value >> 10)));
        value = 0xDC00 + (value & 0x3FF);
    }
    text.push_back(static_cast<char16_t>(value));
}

/// @param name  the part of a reference between `&` and the semicolon
void appendReference(std::u16string& text, std::u16string_view name) {
    if (!name.empty() && name.front() == u'#')
        appendCharacter(text, name.substr(1));
    else if (name == u"amp")
        text.push_back(u'&');
    else if (name == u"lt")
        text.push_back(u'<');
    else if (name == u"gt")
        text.push_back(u'>');
    else if (name == u"quot")
        text.push_back(u'"');
    else if (name == u"apos")
        text.push_back(u'\'');
    else
        refuse();
}

bool isSpace(char16_t unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

/// Whether a document is in XML 1.1, which has more line end characters.
bool isOfVersion11(std::u16string_view text) {
    return text.substr(0, 5) == u"<?xml" &&
           text.substr(0, text.find(u"?>")).find(u"1.1") != std::u16string_view::npos;
}

/// Splits a name at its colon.
void split(std::u16string_view name, std::u16string_view& prefix, std::u16string_view& localName) {
    const std::size_t colon = name.find(u':');
    prefix = colon == std::u16string_view::npos ? std::u16string_view() : name.substr(0, colon);
    localName = colon == std::u16string_view::npos ? name : name.substr(colon + 1);
}

} // namespace

std::u16string Attribute::value() const {
    std::u16string decoded;
    for (std::size_t i = 0; i < rawValue.size(); ++i) {
        if (rawValue[i] == u'&') {
            const std::size_t end = rawValue.find(u';', i);
            if (end == std::u16string_view::npos)
                refuse();
            appendReference(decoded, rawValue.substr(i + 1, end - i - 1));
            i = end;
        } else if (isSpace(rawValue[i])) {
            const bool isPair = rawValue[i] == u'\r' && i + 1 < rawValue.size() && rawValue[i + 1] == u'\n';
            decoded.push_back(u' ');
            i += isPair ? 1 : 0;
        } else {
            decoded.push_back(rawValue[i]);
        }
    }
    return decoded;
}

/// Scans a text from its first code unit to its last.
class MarkupScanner {
public:
    MarkupScanner(const std::u16string& text, Markup& markup)
        : text(text), markup(markup), isBlank(isOfVersion11(text) ? isMarkupSpace : isSpace) {}

    void scan() {
        while (at < text.size()) {
            if (text[at] != u'<')
                takeText();
            else if (isAt(u"<!--"))
                skipBehind(u"-->");
            else if (isAt(u"<?"))
                skipBehind(u"?>");
            else if (isAt(u"<![CDATA["))
                takeSection();
            else if (isAt(u"</"))
                takeEndTag();
            else
                takeStartTag();
        }
        if (markup.found.empty() || !open.empty())
            refuse();
    }

private:
    bool isAt(std::u16string_view expected) const { return text.compare(at, expected.size(), expected) == 0; }

    void skipBehind(std::u16string_view end) {
        const std::size_t found = text.find(end, at);
        if (found == std::u16string::npos)
            refuse();
        at = found + end.size();
    }

    void skipSpace() {
        while (at < text.size() && isMarkupSpace(text[at]))
            ++at;
    }

    void takeText() {
        const std::size_t begin = at;
        at = std::min(text.find(u'<', at), text.size());
        const auto place = [this](std::size_t offset) {
            return text.begin() + static_cast<std::ptrdiff_t>(offset);
        };
        if (!open.empty() && !std::all_of(place(begin), place(at), isBlank))
            markup.found[open.back()].hasText = true;
    }

    void takeSection() {
        if (open.empty())
            refuse();
        markup.found[open.back()].hasText = true;
        skipBehind(u"]]>");
    }

    void takeEndTag() {
        if (open.empty())
            refuse();
        Element& element = markup.found[open.back()];
        element.contentEnd = at;
        skipBehind(u">");
        element.span.end = at;
        close();
    }

    void takeStartTag() {
        if (open.empty() && !markup.found.empty())
            refuse();
        const std::size_t begin = at++;
        Element element{};
        element.parent = open.empty() ? Element::NO_PARENT : open.back();
        element.depth = open.size();
        element.line = lineOf(begin);
        split(takeName(), element.prefix, element.localName);
        element.firstAttribute = markup.values.size();
        for (skipSpace(); !isAt(u">") && !isAt(u"/>"); skipSpace())
            takeAttribute();
        element.attributeCount = markup.values.size() - element.firstAttribute;
        const bool isEmpty = isAt(u"/>");
        at += isEmpty ? 2 : 1;
        element.startTag = element.span = {begin, at};
        element.contentEnd = at;
        resolve(element);
        open.push_back(markup.found.size());
        markup.found.push_back(element);
        if (isEmpty)
            close();
    }

    std::u16string_view takeName() {
        const std::size_t begin = at;
        while (at < text.size() && !isMarkupSpace(text[at]) && text[at] != u'=' && text[at] != u'/' &&
               text[at] != u'>')
            ++at;
        if (at == begin || at == text.size())
            refuse();
        return std::u16string_view(text).substr(begin, at - begin);
    }

    void takeAttribute() {
        Attribute attribute{};
        attribute.span.begin = at;
        split(takeName(), attribute.prefix, attribute.localName);
        skipSpace();
        if (!isAt(u"="))
            refuse();
        ++at;
        skipSpace();
        if (!isAt(u"\"") && !isAt(u"'"))
            refuse();
        const std::size_t end = text.find(text[at], at + 1);
        if (end == std::u16string::npos)
            refuse();
        attribute.rawValue = std::u16string_view(text).substr(at + 1, end - at - 1);
        attribute.span.end = at = end + 1;
        markup.values.push_back(attribute);
    }

    /// Finds the namespaces of an element and its attributes. The element itself can declare them.
    void resolve(Element& element) {
        scope.enter();
        const auto begin = markup.values.begin() + static_cast<std::ptrdiff_t>(element.firstAttribute);
        for (auto attribute = begin; attribute != markup.values.end(); ++attribute) {
            if (!attribute->isDeclaration())
                continue;
            attribute->namespaceURI = *markup.namespaces.insert(attribute->value()).first;
            scope.add(attribute->declaredPrefix(), attribute->namespaceURI);
        }
        element.namespaceURI = namespaceOf(element.prefix);
        for (auto attribute = begin; attribute != markup.values.end(); ++attribute)
            if (!attribute->prefix.empty() && !attribute->isDeclaration())
                attribute->namespaceURI = namespaceOf(attribute->prefix);
    }

    std::u16string_view namespaceOf(std::u16string_view prefix) const {
        if (prefix == u"xml")
            return u"http://www.w3.org/XML/1998/namespace";
        const auto* const found = scope.find(prefix);
        return found != nullptr ? *found : std::u16string_view();
    }

    void close() {
        open.pop_back();
        scope.leave();
    }

    /// @param place  not before that of the last call
    std::size_t lineOf(std::size_t place) {
        for (; counted < place; ++counted)
            if (text[counted] == u'\n' || (text[counted] == u'\r' && text[counted + 1] != u'\n'))
                ++line;
        return line;
    }

    const std::u16string& text;
    Markup& markup;
    bool (*const isBlank)(char16_t);                           // of the text between tags
    ScopedMap<std::u16string_view, std::u16string_view> scope; // of prefixes
    std::vector<std::size_t> open;                             // elements
    std::size_t at = 0;
    std::size_t line = 1;
    std::size_t counted = 0; // the position up to which lines were counted
};

Markup::Markup(const std::u16string& text) {
    MarkupScanner(text, *this).scan();
}

const Attribute* Markup::findAttribute(const Element& element, std::u16string_view namespaceURI,
                                       std::u16string_view name) const {
    const Attributes all = attributes(element);
    const auto* const match = std::find_if(
        all.begin(), all.end(), [&](const Attribute& attribute) { return attribute.is(namespaceURI, name); });
    return match == all.end() ? nullptr : match;
}

} // namespace opc::physical::lenient
