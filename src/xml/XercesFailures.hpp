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

/// A message of Xerces in the narrow encoding of Xerces, as exceptions hold it. Null gives a text that says that
/// there is no message.
std::string toNarrowMessage(const char16_t* message);

/// Runs `operation`. If Xerces runs out of memory in it, throws `std::bad_alloc`: Xerces itself throws a class
/// outside all families of exceptions.
template <typename Operation>
auto translateLackOfMemory(Operation&& operation) {
    try {
        return std::forward<Operation>(operation)();
    } catch (const xercesc::OutOfMemoryException&) {
        throw std::bad_alloc();
    }
}

/// The same. All other failures of Xerces become `InvalidXMLDocument` with the message of Xerces.
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
