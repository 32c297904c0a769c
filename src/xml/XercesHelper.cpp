#include <opc/model/XercesHelper.hpp>

#include "xml/XercesFailures.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/XMLString.hpp>

namespace opc::model {

namespace {

using xercesc::DOMAttr;
using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::XMLString;

DOMElement* append(DOMNode* parent, DOMElement* element) {
    parent->appendChild(element);
    return element;
}

/// Whether an element has a tag name, as for `getElementsByTagName`.
class TagNameTest {
public:
    explicit TagNameTest(const XercesString& tagName) : name(tagName.toXMLCh()), any(tagName == u"*") {}

    bool operator()(const DOMElement* element) const {
        return any || XMLString::equals(element->getTagName(), name);
    }

private:
    const char16_t* name;
    bool any;
};

/// Whether an element has a namespace and a local name, as for `getElementsByTagNameNS`.
class ExpandedNameTest {
public:
    ExpandedNameTest(const XercesString& namespaceURI, const XercesString& localName)
        : uri(namespaceURI.toXMLCh()), name(localName.toXMLCh()), anyURI(namespaceURI == u"*"),
          anyName(localName == u"*") {}

    bool operator()(const DOMElement* element) const {
        return (anyName || XMLString::equals(element->getLocalName(), name)) &&
               (anyURI || XMLString::equals(element->getNamespaceURI(), uri));
    }

private:
    const char16_t* uri;
    const char16_t* name;
    bool anyURI;
    bool anyName;
};

/// The node that follows `node` in document order below `root`, or null.
DOMNode* nextBelow(const DOMElement* root, DOMNode* node) {
    if (DOMNode* const child = node->getFirstChild())
        return child;
    for (; node != root; node = node->getParentNode()) {
        if (DOMNode* const sibling = node->getNextSibling())
            return sibling;
    }
    return nullptr;
}

/// Calls `visit` with each descendant element that matches, until it returns false. The node lists of the DOM walk
/// from the start at each use, which is quadratic.
template <typename Test, typename Visit>
void visitMatches(const DOMElement* root, const Test& matches, Visit&& visit) {
    for (DOMNode* node = root->getFirstChild(); node; node = nextBelow(root, node)) {
        if (node->getNodeType() != DOMNode::ELEMENT_NODE)
            continue;
        auto* const element = static_cast<DOMElement*>(node);
        if (matches(element) && !visit(element))
            return;
    }
}

template <typename Test>
DOMElement* findFirst(const DOMElement* root, const Test& matches) {
    DOMElement* first = nullptr;
    visitMatches(root, matches, [&first](DOMElement* element) {
        first = element;
        return false;
    });
    return first;
}

template <typename Test>
std::vector<DOMElement*> findAll(const DOMElement* root, const Test& matches) {
    std::vector<DOMElement*> all;
    visitMatches(root, matches, [&all](DOMElement* element) {
        all.push_back(element);
        return true;
    });
    return all;
}

bool takeValue(const DOMAttr* attribute, std::u16string& value) {
    if (!attribute)
        return false;
    value = translateLackOfMemory([attribute] { return attribute->getValue(); });
    return true;
}

/// White space in the "C" locale, independent of the locale of the program.
constexpr bool isSpace(char16_t unit) noexcept {
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}

} // namespace

DOMElement* XercesHelper::appendElement(DOMDocument* document, const XercesString& name) {
    return translateXercesFailures([&] { return append(document, document->createElement(name.toXMLCh())); });
}

DOMElement* XercesHelper::appendElement(DOMElement* parent, const XercesString& name) {
    return translateXercesFailures(
        [&] { return append(parent, parent->getOwnerDocument()->createElement(name.toXMLCh())); });
}

DOMElement* XercesHelper::appendElementNS(DOMDocument* document, const XercesString& namespaceURI,
                                          const XercesString& qualifiedName) {
    return translateXercesFailures([&] {
        return append(document, document->createElementNS(namespaceURI.toXMLCh(), qualifiedName.toXMLCh()));
    });
}

DOMElement* XercesHelper::appendElementNS(DOMElement* parent, const XercesString& namespaceURI,
                                          const XercesString& qualifiedName) {
    return translateXercesFailures([&] {
        return append(parent, parent->getOwnerDocument()->createElementNS(namespaceURI.toXMLCh(),
                                                                          qualifiedName.toXMLCh()));
    });
}

void XercesHelper::setElementAttribute(DOMElement* element, const XercesString& name,
                                       const std::u16string& value) {
    translateXercesFailures([&] { element->setAttribute(name.toXMLCh(), value.c_str()); });
}

void XercesHelper::setElementAttributeNS(DOMElement* element, const XercesString& namespaceURI,
                                         const XercesString& qualifiedName, const std::u16string& value) {
    translateXercesFailures(
        [&] { element->setAttributeNS(namespaceURI.toXMLCh(), qualifiedName.toXMLCh(), value.c_str()); });
}

void XercesHelper::setElementText(DOMElement* element, const std::u16string& text) {
    translateXercesFailures([&] { element->setTextContent(text.c_str()); });
}

DOMElement* XercesHelper::getElement(const DOMElement* element, const XercesString& name) {
    return findFirst(element, TagNameTest(name));
}

DOMElement* XercesHelper::getElementNS(const DOMElement* element, const XercesString& namespaceURI,
                                       const XercesString& localName) {
    return findFirst(element, ExpandedNameTest(namespaceURI, localName));
}

std::vector<DOMElement*> XercesHelper::getElements(const DOMElement* element, const XercesString& name) {
    return findAll(element, TagNameTest(name));
}

std::vector<DOMElement*> XercesHelper::getElementsNS(const DOMElement* element,
                                                     const XercesString& namespaceURI,
                                                     const XercesString& localName) {
    return findAll(element, ExpandedNameTest(namespaceURI, localName));
}

bool XercesHelper::getElementAttribute(const DOMElement* element, const XercesString& name,
                                       std::u16string& value) {
    return takeValue(element->getAttributeNode(name.toXMLCh()), value);
}

bool XercesHelper::getElementAttributeNS(const DOMElement* element, const XercesString& namespaceURI,
                                         const XercesString& localName, std::u16string& value) {
    return takeValue(element->getAttributeNodeNS(namespaceURI.toXMLCh(), localName.toXMLCh()), value);
}

bool XercesHelper::getElementText(const DOMElement* element, std::u16string& text) {
    text.clear();
    if (!element)
        return false;
    const DOMNode* const child = element->getFirstChild();
    const char16_t* const value = child ? child->getNodeValue() : nullptr;
    if (value)
        text = value;
    return true;
}

bool XercesHelper::getTrimmedElementText(const DOMElement* element, std::u16string& text) {
    if (!getElementText(element, text))
        return false;
    while (!text.empty() && isSpace(text.back()))
        text.pop_back();
    return true;
}

} // namespace opc::model
