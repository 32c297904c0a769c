#include "comparison/CanonicalXml.hpp"

#include "subject/DocumentReading.hpp"
#include "subject/Names.hpp"

#include <opc/core/PrintableText.hpp>

#include <algorithm>
#include <cstdio>
#include <tuple>

namespace opc::inspection {

namespace {

/// A deep document must not become much longer by its indentation.
constexpr std::size_t DEEPEST_INDENT = 40;

/// A longer text stands in several lines, so that it isn't held as a whole.
constexpr std::size_t LONGEST_TEXT_AT_ONCE = 1U << 20;

bool isBlank(std::u16string_view text) {
    return text.find_first_not_of(u" \t\r\n") == std::u16string_view::npos;
}

bool isPlain(char16_t unit) {
    return unit >= u' ' && unit <= u'~' && unit != u'&' && unit != u'<' && unit != u'>' && unit != u'"';
}

std::string reference(char32_t character) {
    char text[16];
    std::snprintf(text, sizeof text, "&#x%X;", static_cast<unsigned>(character));
    return text;
}

std::string escape(char32_t character, std::u16string_view units) {
    switch (character) {
    case U'&':
        return "&amp;";
    case U'<':
        return "&lt;";
    case U'>':
        return "&gt;";
    case U'"':
        return "&quot;";
    default:
        return isUnprintable(character) ? reference(character) : narrow(units);
    }
}

std::string escaped(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        if (isPlain(text[i])) {
            result += static_cast<char>(text[i++]);
            continue;
        }
        const bool isPair = (text[i] & 0xFC00U) == 0xD800U && i + 1 < text.size();
        const char32_t character =
            isPair ? 0x10000U + ((text[i] & 0x3FFU) << 10U) + (text[i + 1] & 0x3FFU) : text[i];
        const std::size_t size = isPair ? 2 : 1;
        result += escape(character, text.substr(i, size));
        i += size;
    }
    return result;
}

/// In a line of its own, a blank at an end would be seen as indentation, or not at all.
std::string withVisibleEnds(std::string text) {
    if (!text.empty() && text.back() == ' ')
        text.replace(text.size() - 1, 1, reference(U' '));
    if (!text.empty() && text.front() == ' ')
        text.replace(0, 1, reference(U' '));
    return text;
}

} // namespace

void CanonicalXml::onStart(const model::XmlElement& element, const model::XmlPlace&) {
    passTag();
    passText(true);
    for (std::size_t i = 0; i < element.declarationCount(); ++i)
        prefixes.suggest(element.declaration(i).namespaceURI, element.declaration(i).prefix);
    const std::u16string_view space = element.valueOf(XML_NAMESPACE, u"space");
    const bool inherits = !levels.empty() && levels.back().preservesSpace;
    levels.push_back({nameOf(element.namespaceURI(), element.localName(), false),
                      space.data() == nullptr ? inherits : space == u"preserve"});
    openTag(element);
}

void CanonicalXml::openTag(const model::XmlElement& element) {
    tag = "<" + levels.back().name;
    std::vector<model::XmlAttribute> attributes;
    for (std::size_t i = 0; i < element.attributeCount(); ++i)
        attributes.push_back(element.attribute(i));
    std::sort(attributes.begin(), attributes.end(), [](const auto& left, const auto& right) {
        return std::tie(left.namespaceURI, left.localName) < std::tie(right.namespaceURI, right.localName);
    });
    for (const model::XmlAttribute& attribute : attributes)
        tag.append(" ")
            .append(nameOf(attribute.namespaceURI, attribute.localName, true))
            .append("=\"")
            .append(escaped(attribute.value))
            .append("\"");
}

void CanonicalXml::onText(std::u16string_view piece) {
    while (text.size() + piece.size() > LONGEST_TEXT_AT_ONCE) {
        const std::size_t taken = LONGEST_TEXT_AT_ONCE - text.size();
        text.append(piece.substr(0, taken));
        piece.remove_prefix(taken);
        passTag();
        passText(false);
    }
    text.append(piece);
}

void CanonicalXml::onComment(std::u16string_view content) {
    writeAside("<!--" + escaped(content) + "-->");
}

void CanonicalXml::onInstruction(std::u16string_view target, std::u16string_view data) {
    writeAside("<?" + escaped(target) + (data.empty() ? "" : " ") + escaped(data) + "?>");
}

void CanonicalXml::onEnd() {
    const Level& level = levels.back();
    if (tag.empty()) {
        passText(true);
        writeLine("</" + level.name + ">", levels.size() - 1);
    } else {
        const std::string ending = text.empty() ? "/>" : ">" + escaped(text) + "</" + level.name + ">";
        writeLine(tag + ending, levels.size() - 1);
        tag.clear();
        text.clear();
    }
    levels.pop_back();
}

void CanonicalXml::end() {
    for (std::size_t i = 0; i < used.size(); ++i) {
        const XmlPrefixes::Namespace& one = prefixes.all()[i];
        if (used[i] && !(one.uri.empty() && one.prefix.empty()))
            writeLine("xmlns" + std::string(one.prefix.empty() ? "" : ":") + escaped(one.prefix) + "=\"" +
                          escaped(one.uri) + "\"",
                      0);
    }
}

std::string CanonicalXml::nameOf(std::u16string_view uri, std::u16string_view local, bool isAttribute) {
    if (uri.empty() && isAttribute)
        return escaped(local);
    if (uri == XML_NAMESPACE)
        return "xml:" + escaped(local);
    const std::size_t place = prefixes.find(uri);
    if (used.size() <= place)
        used.resize(place + 1);
    used[place] = true;
    const std::u16string& prefix = prefixes.all()[place].prefix;
    return escaped(prefix) + (prefix.empty() && !isAttribute ? "" : ":") + escaped(local);
}

/// Writes the start tag of an element that holds more than a text.
void CanonicalXml::passTag() {
    if (tag.empty())
        return;
    writeLine(tag + ">", levels.size() - 1);
    tag.clear();
}

/// Writes what was gathered of a text as a line.
/// @param isWhole  whether the text ends here
void CanonicalXml::passText(bool isWhole) {
    if (text.empty())
        return;
    if (levels.back().preservesSpace || !isBlank(text)) {
        const std::string content = escaped(text);
        writeLine(isWhole ? withVisibleEnds(content) : content, levels.size());
    }
    text.clear();
}

void CanonicalXml::writeAside(const std::string& content) {
    passTag();
    passText(true);
    writeLine(content, levels.size());
}

void CanonicalXml::writeLine(std::string_view content, std::size_t depth) {
    line.assign(2 * std::min(depth, DEEPEST_INDENT), ' ');
    line += content;
    sink.onLine(line);
}

} // namespace opc::inspection
