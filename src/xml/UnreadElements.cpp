#include "xml/UnreadElements.hpp"

#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/util/XMLString.hpp>

namespace opc::model {

std::size_t countUnread(const xercesc::DOMElement* root, const XercesString& namespaceURI,
                        const XercesString& usualName, std::size_t read) {
    const bool isUsual = xercesc::XMLString::equals(root->getNamespaceURI(), namespaceURI.toXMLCh()) &&
                         xercesc::XMLString::equals(root->getLocalName(), usualName.toXMLCh());
    return XercesHelper::getElements(root, XercesString(u"*")).size() - read + (isUsual ? 0 : 1);
}

std::string describeUnread(std::size_t count) {
    return "a change would lose elements that weren't read, as they have a namespace prefix or stand in the "
           "wrong place: " +
           std::to_string(count);
}

} // namespace opc::model
