#include <opc/model/XercesErrorHandler.hpp>

#include "xml/XercesFailures.hpp"

#include <xercesc/dom/DOMError.hpp>
#include <xercesc/dom/DOMLocator.hpp>
#include <xercesc/util/XMLString.hpp>

namespace opc::model {

namespace {

constexpr XMLFileLoc UNKNOWN = ~XMLFileLoc{0}; // Xerces' -1

} // namespace

XercesErrorHandler::~XercesErrorHandler() {
    xercesc::XMLString::release(&errorMessage);
}

bool XercesErrorHandler::handleError(const xercesc::DOMError& error) {
    if (error.getSeverity() == xercesc::DOMError::DOM_SEVERITY_WARNING)
        return true;
    // Xerces swallows exceptions from here and takes the document for valid. So the error counts even if there is no
    // memory for its message.
    recorded = true;
    const xercesc::DOMLocator* const place = error.getLocation();
    line = place != nullptr ? place->getLineNumber() : 0;
    column = place != nullptr ? place->getColumnNumber() : 0;
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
    if (!recorded)
        return;
    InvalidXMLDocument failure(toNarrowMessage(errorMessage));
    if (line != 0 && line != UNKNOWN)
        failure.addDetails("line " + std::to_string(line) + ", column " + std::to_string(column));
    throw failure;
}

} // namespace opc::model
