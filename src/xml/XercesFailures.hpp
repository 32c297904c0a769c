#pragma once

#include <opc/model/Errors.hpp>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLException.hpp>

#include <new>
#include <string>
#include <utility>

namespace opc::model {

/// A message of Xerces as exceptions hold it, in the narrow encoding of Xerces. Null gives a text that says
/// that there is none.
std::string toNarrowMessage(const char16_t* message);

/// Runs `operation`; if Xerces gets no memory in it, that leaves as `std::bad_alloc`. What Xerces throws then
/// belongs to no family of exceptions.
template <typename Operation>
auto translateLackOfMemory(Operation&& operation) {
    try {
        return std::forward<Operation>(operation)();
    } catch (const xercesc::OutOfMemoryException&) {
        throw std::bad_alloc();
    }
}

/// The same, and any other failure of Xerces leaves as `InvalidXMLDocument` with the message of Xerces.
template <typename Operation>
auto translateXercesFailures(Operation&& operation) {
    try {
        return translateLackOfMemory(std::forward<Operation>(operation));
    } catch (const xercesc::DOMException& failure) {
        throw InvalidXMLDocument(toNarrowMessage(failure.getMessage()));
    } catch (const xercesc::SAXException& failure) {
        throw InvalidXMLDocument(toNarrowMessage(failure.getMessage()));
    } catch (const xercesc::XMLException& failure) {
        throw InvalidXMLDocument(toNarrowMessage(failure.getMessage()));
    }
}

} // namespace opc::model
