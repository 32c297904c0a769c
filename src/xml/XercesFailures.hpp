#pragma once

#include <opc/model/Errors.hpp>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/XMLException.hpp>

#include <string>
#include <utility>

namespace opc::model {

/// A message of Xerces as exceptions hold it, in the narrow encoding of Xerces. Null gives a text that says
/// that there is none.
std::string toNarrowMessage(const char16_t* message);

/// Runs `operation`; a failure of Xerces in it leaves as `InvalidXMLDocument` with the message of Xerces.
/// `xercesc::OutOfMemoryException` belongs to none of these families and passes.
template <typename Operation>
auto translateXercesFailures(Operation&& operation) {
    try {
        return std::forward<Operation>(operation)();
    } catch (const xercesc::DOMException& failure) {
        throw InvalidXMLDocument(toNarrowMessage(failure.getMessage()));
    } catch (const xercesc::SAXException& failure) {
        throw InvalidXMLDocument(toNarrowMessage(failure.getMessage()));
    } catch (const xercesc::XMLException& failure) {
        throw InvalidXMLDocument(toNarrowMessage(failure.getMessage()));
    }
}

} // namespace opc::model
