#include "xml/DocumentLimits.hpp"

#include <opc/model/Errors.hpp>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>

namespace opc::model {

namespace {

constexpr std::size_t MAXIMUM_DEPTH = 1000;
constexpr std::size_t MAXIMUM_COMMENTS = 10000;
constexpr std::size_t MAXIMUM_ATTRIBUTES = 1000;

} // namespace

DocumentLimits::FilterAction DocumentLimits::startElement(xercesc::DOMElement* element) {
    if (++depth > MAXIMUM_DEPTH)
        return acceptUnless(true, "XML content can not be nested deeper than 1000 elements");
    return acceptUnless(element->getAttributes()->getLength() > MAXIMUM_ATTRIBUTES,
                        "XML content can not have more than 1000 attributes on an element");
}

DocumentLimits::FilterAction DocumentLimits::acceptNode(xercesc::DOMNode* node) {
    if (node->getNodeType() == xercesc::DOMNode::ELEMENT_NODE) {
        --depth;
        return FILTER_ACCEPT;
    }
    return acceptUnless(++comments > MAXIMUM_COMMENTS,
                        "XML content can not contain more than 10000 comments");
}

xercesc::DOMNodeFilter::ShowType DocumentLimits::getWhatToShow() const {
    return xercesc::DOMNodeFilter::SHOW_ELEMENT | xercesc::DOMNodeFilter::SHOW_COMMENT;
}

void DocumentLimits::throwIfExceeded() const {
    if (failure)
        throw InvalidXMLDocument(failure);
}

DocumentLimits::FilterAction DocumentLimits::acceptUnless(bool exceeded, const char* message) {
    if (!exceeded)
        return FILTER_ACCEPT;
    failure = message;
    return FILTER_INTERRUPT;
}

} // namespace opc::model
