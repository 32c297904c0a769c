#include "signatures/SignatureLimits.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/util/XMLString.hpp>

namespace opc::model {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;

constexpr int MAXIMUM_NESTING = 6;
constexpr std::size_t MAXIMUM_ASIDES = 2000;

/// Whether it is markup that no element is made of.
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

bool isNamed(const DOMNode* node, const XercesString& name) {
    return xercesc::XMLString::equals(node->getNodeName(), name.toXMLCh());
}

} // namespace

SignatureLimits::SignatureLimits(const SignatureNames& signatureNames) : names(signatureNames) {
}

void SignatureLimits::check(const DOMElement* root) const {
    Place place;
    std::size_t asides = 0;
    for (const DOMNode* node = root; node;) {
        enter(node, place);
        if (place.depth > MAXIMUM_NESTING)
            throw InvalidPartContent("XML signature: Elements are nested too deeply.");
        if (isAside(node) && ++asides > MAXIMUM_ASIDES)
            throw InvalidPartContent("XML signature: There are more than 2000 comments, CDATA sections and "
                                     "processing instructions.");
        const DOMNode* const child = node->getFirstChild();
        node = child ? child : leave(node, root, place);
    }
}

bool SignatureLimits::isReadRepeatedly(const DOMNode* node, const Place& place) const {
    if (node->getNodeType() != DOMNode::ELEMENT_NODE)
        return false;
    return isNamed(node, names.object) ||
           (place.contents > 0 && (isNamed(node, names.reference) || isNamed(node, names.transform) ||
                                   isNamed(node, names.signatureProperty)));
}

/// Whether it is what the references and the properties are read from.
bool SignatureLimits::isContent(const DOMNode* node) const {
    if (node->getNodeType() != DOMNode::ELEMENT_NODE)
        return false;
    std::u16string id;
    return isNamed(node, names.signedInfo) ||
           (isNamed(node, names.object) &&
            XercesHelper::getElementAttribute(static_cast<const DOMElement*>(node), names.id, id) &&
            id == vocabulary::PACKAGE_OBJECT_ID);
}

void SignatureLimits::enter(const DOMNode* node, Place& place) const {
    if (isReadRepeatedly(node, place))
        ++place.depth;
    if (isContent(node))
        ++place.contents;
}

/// The node that follows the end of `node` in document order; null behind the root.
const DOMNode* SignatureLimits::leave(const DOMNode* node, const DOMElement* root, Place& place) const {
    for (;; node = node->getParentNode()) {
        if (isContent(node))
            --place.contents;
        if (isReadRepeatedly(node, place))
            --place.depth;
        if (node == root)
            return nullptr;
        if (const DOMNode* const sibling = node->getNextSibling())
            return sibling;
    }
}

} // namespace opc::model
