#include "DocumentEdits.hpp"

#include "AttributeText.hpp"

namespace opc::physical::lenient {

namespace {

bool isBlank(char16_t unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

} // namespace

DocumentEdits::DocumentEdits(const Document& edited) : edited(edited), text(edited.text().text()) {
}

void DocumentEdits::remove(const Element& element) {
    edits.replace(element.span, {});
}

void DocumentEdits::setValue(const Attribute& attribute, std::u16string_view value) {
    const std::size_t end = attribute.span.end - 1;
    edits.replace({end - attribute.rawValue.size(), end}, escapeValue(value));
}

void DocumentEdits::addValue(const Element& element, std::u16string_view attribute,
                             std::u16string_view value) {
    const std::size_t end = element.startTag.end - (element.isEmptyTag() ? 2 : 1);
    std::u16string markup;
    addAttribute(markup, attribute, value);
    edits.replace({end, end}, std::move(markup));
}

std::u16string DocumentEdits::compose(std::u16string_view localName, const NewAttributes& attributes) const {
    const std::u16string_view prefix = edited.markup().root().prefix;
    std::u16string element = u"<";
    if (!prefix.empty())
        element.append(prefix).append(u":");
    element.append(localName);
    for (const auto& [name, value] : attributes)
        addAttribute(element, name, value);
    return element.append(u"/>");
}

void DocumentEdits::append(std::u16string_view localName, const NewAttributes& attributes) {
    added.append(compose(localName, attributes));
}

void DocumentEdits::insert(const Element& next, std::u16string_view localName,
                           const NewAttributes& attributes) {
    edits.replace({next.span.begin, next.span.begin}, compose(localName, attributes));
}

void DocumentEdits::insertAdded() {
    const Element& root = edited.markup().root();
    if (!root.isEmptyTag()) {
        std::size_t place = root.contentEnd;
        while (place > root.startTag.end && isBlank(text[place - 1]))
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
