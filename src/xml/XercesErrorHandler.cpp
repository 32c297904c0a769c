#include <opc/model/XercesErrorHandler.hpp>

#include "xml/XercesFailures.hpp"

#include <xercesc/dom/DOMError.hpp>
#include <xercesc/util/XMLString.hpp>

namespace opc::model {

XercesErrorHandler::~XercesErrorHandler() {
    xercesc::XMLString::release(&errorMessage);
}

bool XercesErrorHandler::handleError(const xercesc::DOMError& error) {
    if (error.getSeverity() == xercesc::DOMError::DOM_SEVERITY_WARNING)
        return true;
    // Xerces swallows what is thrown here and takes the document as valid: the error counts even if there is
    // no memory for its message.
    recorded = true;
    try {
        char16_t* const copy = xercesc::XMLString::replicate(error.getMessage());
        xercesc::XMLString::release(&errorMessage);
        errorMessage = copy;
    } catch (...) {
        xercesc::XMLString::release(&errorMessage);
    }
    return false;
}

void XercesErrorHandler::throwIfError() const {
    if (recorded)
        throw InvalidXMLDocument(toNarrowMessage(errorMessage));
}

} // namespace opc::model
