#include "MendedDocument.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <algorithm>
#include <array>
#include <string_view>

namespace opc::physical::lenient {

namespace {

using model::XercesHelper;
using model::XercesString;
using xercesc::DOMElement;
using xercesc::XMLString;

bool hasPrefix(const DOMElement* element) {
    return element->getPrefix() != nullptr && *element->getPrefix() != 0;
}

/// Declares the namespace of an element without prefix where what stands above it declares another one.
void declareDefault(DOMElement* element) {
    static constexpr char16_t NONE[] = u"";
    const char16_t* const own = element->getNamespaceURI() != nullptr ? element->getNamespaceURI() : NONE;
    const xercesc::DOMNode* const parent = element->getParentNode();
    const char16_t* const inherited =
        parent->getNodeType() == xercesc::DOMNode::ELEMENT_NODE ? parent->lookupNamespaceURI(nullptr) : NONE;
    const XercesString attribute(xercesc::XMLUni::fgXMLNSString);
    if (!XMLString::equals(inherited, own) || element->hasAttribute(attribute.toXMLCh()))
        XercesHelper::setElementAttributeNS(element, XercesString(xercesc::XMLUni::fgXMLNSURIName), attribute,
                                            own);
}

} // namespace

bool mayHavePrefixes(const Bytes& document) {
    constexpr std::string_view DECLARATION = "xmlns:";
    std::array<unsigned char, 2 * DECLARATION.size() - 1> wide{}; // in UTF-16 of either byte order
    for (std::size_t i = 0; i < DECLARATION.size(); ++i)
        wide[2 * i] = static_cast<unsigned char>(DECLARATION[i]);
    const auto contains = [&document](const auto& text) {
        return std::search(document.begin(), document.end(), text.begin(), text.end()) != document.end();
    };
    return contains(DECLARATION) || contains(wide);
}

MendedDocument::MendedDocument(const Bytes& text) : parser(XercesHelper::createParser()) {
    if (hasTooMuchMarkup(text))
        throw Exception("The document has too many elements and attributes to be mended.");
    ByteArrayInAdaptor stream(text);
    document = XercesHelper::readDocumentFromStream(parser.get(), stream, false, {}, {});
}

MendedDocument::~MendedDocument() = default;

DOMElement* MendedDocument::root() const {
    return document->getDocumentElement();
}

bool MendedDocument::removePrefixes(const XercesString& namespaceURI) {
    std::vector<DOMElement*> elements = XercesHelper::getElements(root(), XercesString(u"*"));
    elements.insert(elements.begin(), root());
    const auto isPrefixed = [&namespaceURI](const DOMElement* element) {
        return hasPrefix(element) && XMLString::equals(element->getNamespaceURI(), namespaceURI.toXMLCh());
    };
    if (std::none_of(elements.begin(), elements.end(), isPrefixed))
        return false;
    for (DOMElement* element : elements) {
        if (isPrefixed(element))
            element->setPrefix(nullptr);
        if (!hasPrefix(element))
            declareDefault(element);
    }
    return true;
}

Bytes MendedDocument::toBytes() const {
    std::u16string text;
    XercesHelper::writeDocumentToString(XercesHelper::createWriter().get(), document, text,
                                        model::XmlDeclaration::Omit);
    const std::string narrow = detail::toUTF8String(text, true);
    return Bytes(narrow.begin(), narrow.end());
}

} // namespace opc::physical::lenient
