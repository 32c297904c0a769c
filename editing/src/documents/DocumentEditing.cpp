#include "documents/DocumentEditing.hpp"

#include "lenient/src/AttributeText.hpp"

namespace opc::editing {

using namespace lenient;

namespace {

bool isBlank(char16_t unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

} // namespace

DocumentEditing::DocumentEditing(const std::string& bytes)
    : document(lenient::Bytes(bytes.begin(), bytes.end())) {
}

void DocumentEditing::set(std::size_t element, std::u16string_view name, std::u16string value) {
    values[{element, std::u16string(name)}] = std::move(value);
}

void DocumentEditing::removeAttribute(std::size_t element, const Attribute& attribute) {
    dropped.emplace(attribute.span.begin, std::pair(element, attribute.span));
}

void DocumentEditing::replace(const Span& span, std::u16string replacement) {
    replaced.emplace_back(span, std::move(replacement));
}

std::u16string DocumentEditing::prefixed(std::u16string_view localName) const {
    const std::u16string_view prefix = markup().root().prefix;
    std::u16string name(prefix);
    if (!prefix.empty())
        name += u":";
    return name.append(localName);
}

void DocumentEditing::append(std::u16string_view localName, const Attributes& attributes,
                             std::u16string_view content) {
    const std::u16string name = prefixed(localName);
    added += u"<" + name;
    for (const auto& [attribute, value] : attributes)
        addAttribute(added, attribute, value);
    if (content.empty())
        added += u"/>";
    else
        added.append(u">").append(content).append(u"</" + name + u">");
}

void DocumentEditing::setContent(std::size_t index, std::u16string_view content) {
    const Element& changed = element(index);
    if (!changed.isEmptyTag()) {
        replace({changed.startTag.end, changed.contentEnd}, std::u16string(content));
        return;
    }
    std::u16string name(changed.prefix);
    name.append(name.empty() ? u"" : u":").append(changed.localName);
    replace({changed.span.end - 2, changed.span.end}, u">" + std::u16string(content) + u"</" + name + u">");
}

bool DocumentEditing::isWithinRemoved(std::size_t element) const {
    if (removed.empty())
        return false;
    for (; element != Element::NO_PARENT; element = this->element(element).parent)
        if (removed.count(element) != 0)
            return true;
    return false;
}

std::string DocumentEditing::apply() const {
    TextEdits edits;
    for (const std::size_t index : removed)
        if (!isWithinRemoved(element(index).parent))
            edits.replace(element(index).span, {});
    applyAttributes(edits);
    for (const auto& [span, replacement] : replaced)
        edits.replace(span, replacement);
    if (!added.empty())
        applyAdded(edits);
    const lenient::Bytes changed = document.text().encode(edits.applyTo(text()));
    return {changed.begin(), changed.end()};
}

void DocumentEditing::applyAttributes(TextEdits& edits) const {
    for (const auto& [key, value] : values) {
        const auto& [index, name] = key;
        if (isWithinRemoved(index))
            continue;
        const Element& changed = element(index);
        if (const Attribute* const old = markup().findAttribute(changed, {}, name)) {
            const std::size_t end = old->span.end - 1;
            edits.replace({end - old->rawValue.size(), end}, escapeValue(value));
            continue;
        }
        std::u16string attribute;
        addAttribute(attribute, name, value);
        const std::size_t end = changed.startTag.end - (text()[changed.startTag.end - 2] == u'/' ? 2 : 1);
        edits.replace({end, end}, attribute);
    }
    for (const auto& [begin, attribute] : dropped) {
        const auto& [index, span] = attribute;
        if (!isWithinRemoved(index))
            edits.replace({isBlank(text()[begin - 1]) ? begin - 1 : begin, span.end}, {});
    }
}

void DocumentEditing::applyAdded(TextEdits& edits) const {
    const Element& root = markup().root();
    if (root.isEmptyTag()) {
        edits.replace({root.span.end - 2, root.span.end},
                      u">" + added + u"</" + prefixed(root.localName) + u">");
        return;
    }
    std::size_t place = root.contentEnd;
    while (place > root.startTag.end && isBlank(text()[place - 1]))
        --place;
    edits.replace({place, place}, added);
}

} // namespace opc::editing
