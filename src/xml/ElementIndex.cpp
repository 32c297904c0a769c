#include "xml/ElementIndex.hpp"

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/util/XMLString.hpp>

namespace opc::model {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::XMLString;

/// Whether a node is markup other than elements and text.
bool isAside(const DOMNode* node) {
    switch (node->getNodeType()) {
    case DOMNode::COMMENT_NODE:
    case DOMNode::CDATA_SECTION_NODE:
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
        return true;
    default:
        return false;
    }
}

bool hasName(const DOMElement* element, const XercesString& namespaceURI, const XercesString& localName) {
    return XMLString::equals(element->getLocalName(), localName.toXMLCh()) &&
           XMLString::equals(element->getNamespaceURI(), namespaceURI.toXMLCh());
}

} // namespace

ElementIndex::ElementIndex(const DOMElement* root) {
    // A stack, because asking a node for its parent costs much more than everything else.
    struct Ancestor {
        const DOMNode* node;
        std::size_t position;
    };
    constexpr auto NOWHERE = static_cast<std::size_t>(-1);
    std::vector<Ancestor> open;
    const auto enter = [&](const DOMNode* node) {
        if (isAside(node))
            ++asides;
        if (node->getNodeType() != DOMNode::ELEMENT_NODE)
            return NOWHERE;
        const auto* const element = static_cast<const DOMElement*>(node);
        entries.push_back({element, element->getTagName(), entries.size() + 1});
        return entries.size() - 1;
    };
    for (const DOMNode* node = root; node;) {
        const std::size_t position = enter(node);
        if (const DOMNode* const child = node->getFirstChild()) {
            open.push_back({node, position});
            node = child;
            continue;
        }
        while (!open.empty() && !node->getNextSibling()) {
            if (open.back().position != NOWHERE)
                entries[open.back().position].end = entries.size();
            node = open.back().node;
            open.pop_back();
        }
        node = open.empty() ? nullptr : node->getNextSibling();
    }
}

std::vector<IndexedElement> IndexedElement::getElements(const XercesString& tagName) const {
    const std::u16string_view name = tagName.toXMLCh();
    std::vector<IndexedElement> found;
    for (std::size_t place = position + 1; place < end(); ++place)
        if (index->entries[place].tagName == name)
            found.emplace_back(*index, place);
    return found;
}

std::optional<IndexedElement> IndexedElement::getElement(const XercesString& tagName) const {
    const std::u16string_view name = tagName.toXMLCh();
    for (std::size_t place = position + 1; place < end(); ++place)
        if (index->entries[place].tagName == name)
            return IndexedElement(*index, place);
    return std::nullopt;
}

std::vector<IndexedElement> IndexedElement::getElementsNS(const XercesString& namespaceURI,
                                                          const XercesString& localName) const {
    std::vector<IndexedElement> found;
    for (std::size_t place = position + 1; place < end(); ++place)
        if (hasName(index->entries[place].element, namespaceURI, localName))
            found.emplace_back(*index, place);
    return found;
}

std::optional<IndexedElement> IndexedElement::getElementNS(const XercesString& namespaceURI,
                                                           const XercesString& localName) const {
    for (std::size_t place = position + 1; place < end(); ++place)
        if (hasName(index->entries[place].element, namespaceURI, localName))
            return IndexedElement(*index, place);
    return std::nullopt;
}

} // namespace opc::model
