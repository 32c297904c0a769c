#include "subject/EntryList.hpp"

#include "subject/Names.hpp"

#include <algorithm>

namespace opc::inspection {

namespace {

constexpr std::u16string_view XML_SPACE = u" \t\r\n";

/// The namespaces of the prefixes in a list, as the element declares them.
std::vector<std::u16string> namespacesOf(std::u16string_view prefixes, const model::XmlElement& element) {
    std::vector<std::u16string> found;
    while (!prefixes.empty()) {
        const std::size_t end = std::min(prefixes.find_first_of(XML_SPACE), prefixes.size());
        const std::u16string_view prefix = prefixes.substr(0, end);
        for (std::size_t i = 0; !prefix.empty() && i < element.declarationCount(); ++i)
            if (element.declaration(i).prefix == prefix)
                found.emplace_back(element.declaration(i).namespaceURI);
        prefixes.remove_prefix(std::min(end + 1, prefixes.size()));
    }
    return found;
}

} // namespace

void EntryList::onStart(const model::XmlElement& element, const model::XmlPlace& behind) {
    ++depth;
    place = behind;
    if (depth == 1)
        startRoot(element);
    else if (skipped == 0)
        startInside(element);
}

void EntryList::startRoot(const model::XmlElement& element) {
    if (const auto prefixes = element.valueOf(MARKUP_COMPATIBILITY, u"Ignorable"); !prefixes.empty())
        ignorable = namespacesOf(prefixes, element);
    checkAttributes(element, {});
}

void EntryList::startInside(const model::XmlElement& element) {
    const std::u16string_view name = element.localName();
    const std::u16string_view namespaceURI = element.namespaceURI();
    if (namespaceURI == MARKUP_COMPATIBILITY && (name == u"AlternateContent" || name == u"Fallback"))
        return; // their content stands in their place
    skipped = depth;
    if (namespaceURI == MARKUP_COMPATIBILITY || isIgnorable(namespaceURI))
        return;
    const auto found = std::find_if(kind.entries.begin(), kind.entries.end(),
                                    [name](const EntryListKind::Entry& entry) { return entry.name == name; });
    if (namespaceURI != kind.namespaceURI || found == kind.entries.end()) {
        addFault(DocumentFault::Kind::Element, namespaceURI, name);
        return;
    }
    mayHaveText = found->mayHaveText;
    if (++entries > kind.mostEntries)
        throw BeyondLimit{"It has more entries than are read"};
    checkAttributes(element, found->attributes);
    onEntry(static_cast<std::size_t>(found - kind.entries.begin()), element, place);
}

void EntryList::onEnd() {
    if (skipped == depth) {
        skipped = 0;
        mayHaveText = false;
    }
    --depth;
}

void EntryList::onText(std::u16string_view text) {
    const bool counts = skipped == 0 || (skipped == depth && !mayHaveText);
    if (counts && text.find_first_not_of(XML_SPACE) != std::u16string_view::npos)
        addFault(DocumentFault::Kind::Text, kind.namespaceURI, {});
}

void EntryList::checkAttributes(const model::XmlElement& element,
                                const std::vector<std::u16string_view>& allowed) {
    for (std::size_t i = 0; i < element.attributeCount(); ++i) {
        const model::XmlAttribute attribute = element.attribute(i);
        const std::u16string_view namespaceURI = attribute.namespaceURI;
        if (namespaceURI.empty()) {
            if (std::find(allowed.begin(), allowed.end(), attribute.localName) == allowed.end())
                addFault(DocumentFault::Kind::Attribute, kind.namespaceURI, attribute.localName);
        } else if (namespaceURI == XML_NAMESPACE) {
            addFault(DocumentFault::Kind::XmlAttribute, kind.namespaceURI,
                     u"xml:" + std::u16string(attribute.localName));
        } else if (namespaceURI == SCHEMA_INSTANCE) {
            addFault(DocumentFault::Kind::SchemaInstanceAttribute, kind.namespaceURI,
                     u"xsi:" + std::u16string(attribute.localName));
        } else if (namespaceURI != MARKUP_COMPATIBILITY && !isIgnorable(namespaceURI)) {
            addFault(DocumentFault::Kind::Attribute, namespaceURI, attribute.localName);
        }
    }
}

void EntryList::addFault(DocumentFault::Kind fault, std::u16string_view namespaceURI,
                         std::u16string_view name) {
    if (state.faults.size() >= DocumentState::MOST_FAULTS)
        return;
    std::string shown = namespaceURI == kind.namespaceURI ? "" : "{" + narrow(namespaceURI) + "}";
    shown += narrow(name);
    state.faults.push_back({fault, std::move(shown), place.line, place.column});
}

bool EntryList::isIgnorable(std::u16string_view namespaceURI) const {
    return std::find(ignorable.begin(), ignorable.end(), namespaceURI) != ignorable.end();
}

} // namespace opc::inspection
