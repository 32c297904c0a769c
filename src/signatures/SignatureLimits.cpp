#include "signatures/SignatureLimits.hpp"

#include <opc/model/Errors.hpp>

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

} // namespace

SignatureLimits::SignatureLimits(const SignatureNames& names)
    : limitedNames{names.object.toXMLCh(), names.reference.toXMLCh(), names.transform.toXMLCh(),
                   names.signatureProperty.toXMLCh()} {
}

void SignatureLimits::check(const DOMElement* root) const {
    int depth = 0;
    std::size_t asides = 0;
    for (const DOMNode* node = root; node;) {
        if (isLimited(node) && ++depth > MAXIMUM_NESTING)
            throw InvalidPartContent("XML signature: Elements are nested too deeply.");
        if (isAside(node) && ++asides > MAXIMUM_ASIDES)
            throw InvalidPartContent("XML signature: There are more than 2000 comments, CDATA sections and "
                                     "processing instructions.");
        const DOMNode* const child = node->getFirstChild();
        node = child ? child : leave(node, root, depth);
    }
}

bool SignatureLimits::isLimited(const DOMNode* node) const {
    if (node->getNodeType() != DOMNode::ELEMENT_NODE)
        return false;
    for (const char16_t* name : limitedNames) {
        if (xercesc::XMLString::equals(node->getNodeName(), name))
            return true;
    }
    return false;
}

/// The node that follows the end of `node` in document order; null behind the root.
const DOMNode* SignatureLimits::leave(const DOMNode* node, const DOMElement* root, int& depth) const {
    for (;; node = node->getParentNode()) {
        if (isLimited(node))
            --depth;
        if (node == root)
            return nullptr;
        if (const DOMNode* const sibling = node->getNextSibling())
            return sibling;
    }
}

} // namespace opc::model
