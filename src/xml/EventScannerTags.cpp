#include "xml/EventScanner.hpp"

#include "xml/PlainCharacters.hpp"

#include <algorithm>

namespace opc::model {

namespace {

/// Where the parser refuses a document, or before.
constexpr std::size_t MOST_DEPTH = 1000;
constexpr std::size_t MOST_ATTRIBUTES = 64;
constexpr std::size_t MOST_DECLARATIONS = 500; // in scope
constexpr std::size_t MOST_NAMESPACES = 500;

constexpr std::u16string_view XML_PREFIX = u"xml";
constexpr std::u16string_view XMLNS = u"xmlns";

bool isNameCharacter(char c) {
    return plain::is(c, plain::Letter | plain::Digit | plain::Colon) || c == '_' || c == '-' || c == '.';
}

bool isSameAttribute(const ScannedName& left, const ScannedName& right) {
    if (&left == &right)
        return true;
    return left.local == right.local && left.hasPrefix() && right.hasPrefix() &&
           left.prefix->namespaceURI == right.prefix->namespaceURI;
}

} // namespace

/// The start tag in hand.
class EventScanner::Element final : public XmlElement {
public:
    Element(EventScanner& scanner, const ScannedName& name) : scanner(scanner), name(name) {}

    std::u16string_view namespaceURI() const override { return name.prefix->namespaceURI; }
    std::u16string_view localName() const override { return name.local; }
    std::u16string_view prefix() const override { return name.prefix->name; }
    std::size_t attributeCount() const override { return scanner.attributes.size(); }
    XmlAttribute attribute(std::size_t index) const override {
        Attribute& found = scanner.attributes.at(index);
        return {namespaceOf(found), found.name->local, scanner.valueOf(found), found.name->prefix->name};
    }
    std::size_t declarationCount() const override { return scanner.declarations.size(); }
    XmlNamespaceDeclaration declaration(std::size_t index) const override {
        const Declaration& found = scanner.declarations.at(index);
        return {found.prefix->name, found.namespaceURI};
    }
    std::u16string_view valueOf(std::u16string_view namespaceURI,
                                std::u16string_view localName) const override {
        for (std::size_t i = 0; i < scanner.attributes.size(); ++i) {
            Attribute& one = scanner.attributes[i];
            if (one.name->local == localName && namespaceOf(one) == namespaceURI)
                return scanner.valueOf(one);
        }
        return {};
    }

private:
    static std::u16string_view namespaceOf(const Attribute& attribute) {
        return attribute.name->hasPrefix() ? attribute.name->prefix->namespaceURI : std::u16string_view();
    }

    EventScanner& scanner;
    const ScannedName& name;
};

Scanned EventScanner::takeStartTag() {
    const char* p = window.at + 1;
    const ScannedName* name = nullptr;
    if (const Scanned result = takeName(p, name); result != Scanned::Taken)
        return result;
    attributes.clear();
    declarations.clear();
    oddValueCount = plainSize = widenedSize = 0;
    for (;;) {
        const bool isSpaced = skipSpace(p);
        if (window.end - p < 2 && !(p != window.end && *p == '>'))
            return Scanned::Incomplete;
        const bool isEmpty = *p == '/';
        if (isEmpty && p[1] != '>')
            return Scanned::NotPlain;
        if (isEmpty || *p == '>') {
            if (!canStart(*name))
                return Scanned::NotPlain;
            tellText();
            window.at = p + (isEmpty ? 2 : 1);
            tellStart(*name, isEmpty);
            return Scanned::Taken;
        }
        if (!isSpaced)
            return Scanned::NotPlain;
        if (const Scanned result = takeAttribute(p); result != Scanned::Taken)
            return result;
    }
}

Scanned EventScanner::takeAttribute(const char*& p) {
    const ScannedName* name = nullptr;
    if (const Scanned result = takeName(p, name); result != Scanned::Taken)
        return result;
    skipSpace(p);
    if (p == window.end)
        return Scanned::Incomplete;
    if (*p++ != '=')
        return Scanned::NotPlain;
    skipSpace(p);
    Attribute attribute{name, {}, {}};
    if (const Scanned result = takeValue(p, attribute); result != Scanned::Taken)
        return result;
    const std::u16string_view prefix = name->prefix->name;
    if (prefix == XMLNS || (prefix.empty() && name->local == XMLNS))
        return declare(attribute) ? Scanned::Taken : Scanned::NotPlain;
    if (attributes.size() >= MOST_ATTRIBUTES)
        return Scanned::NotPlain;
    plainSize += attribute.plain.size();
    attributes.push_back(attribute);
    return Scanned::Taken;
}

Scanned EventScanner::takeValue(const char*& p, Attribute& attribute) {
    if (p == window.end)
        return Scanned::Incomplete;
    const char quote = *p;
    if (quote != '"' && quote != '\'')
        return Scanned::NotPlain;
    const char* const begin = ++p;
    const unsigned kinds = quote == '"' ? plain::DoubleQuoted : plain::SingleQuoted;
    while (window.end - p >= 8 && plain::areEightInValue(p))
        p += 8;
    while (p != window.end && plain::is(*p, kinds))
        ++p;
    if (p == window.end)
        return Scanned::Incomplete;
    attribute.plain = {begin, static_cast<std::size_t>(p - begin)};
    if (*p++ == quote)
        return Scanned::Taken;
    p = begin;
    std::u16string& value = newOddValue();
    const Scanned result = takeOddValue(p, quote, value);
    attribute.value = value;
    return result;
}

Scanned EventScanner::takeOddValue(const char*& p, char quote, std::u16string& value) {
    while (p != window.end && *p != quote) {
        if (*p == '<')
            return Scanned::NotPlain;
        std::uint32_t code = 0;
        const bool isReference = *p == '&';
        const Scanned result = isReference ? decodeReference(p, window.end, code) : takeOddCharacter(p, code);
        if (result != Scanned::Taken)
            return result;
        const bool isBreak = !isReference && (code == '\t' || code == '\n');
        std::array<char16_t, 2> units{};
        value.append(units.data(), putCharacter(isBreak ? U' ' : code, units.data()));
    }
    if (p == window.end)
        return Scanned::Incomplete;
    ++p;
    return Scanned::Taken;
}

bool EventScanner::declare(const Attribute& attribute) {
    constexpr std::u16string_view RESERVED[] = {u"http://www.w3.org/XML/1998/namespace",
                                                u"http://www.w3.org/2000/xmlns/"};
    const bool isDefault = !attribute.name->hasPrefix();
    const std::u16string_view prefix = isDefault ? std::u16string_view() : attribute.name->local;
    if (names.namespaceCount() >= MOST_NAMESPACES || hidden.size() + declarations.size() >= MOST_DECLARATIONS)
        return false;
    const std::u16string_view uri = attribute.value.data() != nullptr ? names.keepNamespace(attribute.value)
                                                                      : names.keepNamespace(attribute.plain);
    const bool isReserved = prefix == XML_PREFIX || prefix == XMLNS ||
                            std::find(std::begin(RESERVED), std::end(RESERVED), uri) != std::end(RESERVED);
    if (isReserved || (uri.empty() && !isDefault))
        return false;
    ScannedPrefix& known = names.prefix(prefix);
    for (const Declaration& other : declarations)
        if (other.prefix == &known)
            return false;
    declarations.push_back({&known, uri});
    return true;
}

/// Whether an element with the attributes in hand can start here. Its declarations count from now on.
bool EventScanner::canStart(const ScannedName& name) {
    if ((openElements.empty() && hasRoot) || openElements.size() >= MOST_DEPTH)
        return false;
    for (const Declaration& declaration : declarations) {
        hidden.push_back({declaration.prefix, declaration.prefix->namespaceURI});
        declaration.prefix->namespaceURI = declaration.namespaceURI;
    }
    const auto isDeclared = [](const ScannedName& any) {
        return !any.hasPrefix() || (any.prefix->isDeclared() && any.prefix->name != XML_PREFIX);
    };
    if (!isDeclared(name))
        return false;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const ScannedName& mine = *attributes[i].name;
        if (!isDeclared(mine) && mine.prefix->name != XML_PREFIX)
            return false;
        for (std::size_t j = 0; j < i; ++j)
            if (isSameAttribute(mine, *attributes[j].name))
                return false;
    }
    return true;
}

void EventScanner::tellStart(const ScannedName& name, bool isEmpty) {
    hasRoot = true;
    openElements.push_back({&name, declarations.size()});
    const std::uint64_t offset = window.offsetOf(window.at);
    tellMarkup();
    if (widened.size() <= plainSize) // there must be room even for an empty one, whose view isn't one of null
        widened.grow(2 * plainSize, nullptr, 0);
    events.onStart(Element(*this, name), {lines.line, lines.columnAt(offset)});
    if (isEmpty)
        tellEnd();
}

Scanned EventScanner::takeEndTag() {
    const char* p = window.at + 2;
    if (openElements.empty())
        return Scanned::NotPlain;
    const std::string_view name = openElements.back().name->text;
    const auto left = static_cast<std::size_t>(window.end - p);
    if (std::string_view(p, left).substr(0, name.size()) != name)
        return left < name.size() ? Scanned::Incomplete : Scanned::NotPlain;
    p += name.size();
    skipSpace(p);
    if (p == window.end)
        return Scanned::Incomplete;
    if (*p != '>')
        return Scanned::NotPlain;
    tellText();
    window.at = p + 1;
    tellEnd();
    return Scanned::Taken;
}

void EventScanner::tellEnd() {
    for (std::size_t i = 0; i < openElements.back().declarations; ++i) {
        hidden.back().prefix->namespaceURI = hidden.back().namespaceURI;
        hidden.pop_back();
    }
    openElements.pop_back();
    tellMarkup();
    events.onEnd();
}

Scanned EventScanner::takeName(const char*& p, const ScannedName*& name) {
    const char* const begin = p;
    while (p != window.end && isNameCharacter(*p))
        ++p;
    if (p == window.end)
        return Scanned::Incomplete;
    name = names.find({begin, static_cast<std::size_t>(p - begin)});
    return name == nullptr ? Scanned::NotPlain : Scanned::Taken;
}

std::u16string& EventScanner::newOddValue() {
    if (oddValueCount == oddValues.size())
        oddValues.push_back(std::make_unique<std::u16string>());
    std::u16string& value = *oddValues[oddValueCount++];
    value.clear();
    return value;
}

/// Widens a plain value when it is asked for.
std::u16string_view EventScanner::valueOf(Attribute& attribute) {
    if (attribute.value.data() == nullptr) {
        char16_t* const target = widened.data() + widenedSize;
        std::transform(attribute.plain.begin(), attribute.plain.end(), target,
                       [](char c) { return static_cast<unsigned char>(c); });
        attribute.value = {target, attribute.plain.size()};
        widenedSize += attribute.plain.size();
    }
    return attribute.value;
}

} // namespace opc::model
