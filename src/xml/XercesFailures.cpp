#include "xml/XercesFailures.hpp"

#include <xercesc/util/XMLString.hpp>

#include <memory>

namespace opc::model {

namespace {

struct NarrowStringDeleter {
    void operator()(char* text) const { xercesc::XMLString::release(&text); }
};

} // namespace

std::string toNarrowMessage(const char16_t* message) {
    const std::unique_ptr<char, NarrowStringDeleter> narrow(
        translateLackOfMemory([message] { return xercesc::XMLString::transcode(message); }));
    return narrow ? narrow.get() : "The XML is invalid, without a message";
}

} // namespace opc::model
