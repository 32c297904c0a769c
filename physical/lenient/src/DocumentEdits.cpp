#include "DocumentEdits.hpp"

#include "AttributeText.hpp"

#include <algorithm>

namespace opc::physical::lenient {

namespace {

bool isBlank(char16_t unit) {
    return unit == u' ' || unit == u'\t';
}

bool isLineBreak(char16_t unit) {
    return unit == u'\n' || unit == u'\r';
}

/// The place in front of a line break that ends in front of `place`.
std::size_t beforeLineBreak(const std::u16string& text, std::size_t place) {
    const bool isPair = place > 1 && text[place - 1] == u'\n' && text[place - 2] == u'\r';
    return place - (isPair ? 2 : 1);
}

/// The line break and the blanks in front of an element that stands first on its line; empty for another one.
Span leadOf(const std::u16string& text, const Element& element) {
    const std::size_t end = element.span.begin;
    std::size_t begin = end;
    while (begin > 0 && isBlank(text[begin - 1]))
        --begin;
    if (begin == 0 || !isLineBreak(text[begin - 1]))
        return {end, end};
    return {beforeLineBreak(text, begin), end};
}

} // namespace

DocumentEdits::DocumentEdits(const Document& document)
    : edited(document), text(document.text().text()), beforeAdded(separator()) {
}

void DocumentEdits::remove(const Element& element) {
    Span span = element.span;
    const Span lead = leadOf(text, element);
    std::size_t lineEnd = span.end;
    while (lineEnd < text.size() && isBlank(text[lineEnd]))
        ++lineEnd;
    if (lead.begin != lead.end && lineEnd < text.size() && isLineBreak(text[lineEnd]))
        span = {lead.begin, lineEnd};
    edits.replace(span, {});
}

void DocumentEdits::setValue(const Attribute& attribute, std::u16string_view value) {
    const std::size_t end = attribute.span.end - 1;
    edits.replace({end - attribute.rawValue.size(), end}, escapeValue(value));
}

/// What stands between the last element in the root and what stands in front of it, if it is white space.
std::u16string DocumentEdits::separator() const {
    const auto& elements = edited.markup().elements();
    const auto last = std::find_if(elements.rbegin(), elements.rend(),
                                   [](const Element& element) { return element.depth == 1; });
    if (last == elements.rend())
        return {};
    const Span lead = leadOf(text, *last);
    return text.substr(lead.begin, lead.end - lead.begin);
}

std::u16string DocumentEdits::compose(std::u16string_view localName, const NewAttributes& attributes) const {
    const std::u16string_view prefix = edited.markup().root().prefix;
    std::u16string element = u"<";
    if (!prefix.empty())
        element.append(prefix).append(u":");
    element.append(localName);
    for (const auto& [name, value] : attributes)
        element.append(u" ").append(name).append(u"=\"").append(escapeValue(value)).append(u"\"");
    return element.append(u"/>");
}

void DocumentEdits::append(std::u16string_view localName, const NewAttributes& attributes) {
    added.append(beforeAdded).append(compose(localName, attributes));
}

void DocumentEdits::insert(const Element& next, std::u16string_view localName,
                           const NewAttributes& attributes) {
    const Span lead = leadOf(text, next);
    edits.replace({lead.end, lead.end},
                  compose(localName, attributes).append(text, lead.begin, lead.end - lead.begin));
}

void DocumentEdits::insertAdded() {
    const Element& root = edited.markup().root();
    if (!root.isEmptyTag()) {
        std::size_t place = root.contentEnd;
        while (place > root.startTag.end && (isBlank(text[place - 1]) || isLineBreak(text[place - 1])))
            --place;
        edits.replace({place, place}, std::move(added));
        return;
    }
    std::u16string name(root.prefix);
    if (!name.empty())
        name.append(u":");
    name.append(root.localName);
    edits.replace({root.span.end - 2, root.span.end}, u">" + added + u"</" + name + u">");
}

Bytes DocumentEdits::apply() {
    if (!added.empty())
        insertAdded();
    added.clear();
    return edited.text().encode(edits.applyTo(text));
}

} // namespace opc::physical::lenient
