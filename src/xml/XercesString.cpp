#include <opc/model/XercesString.hpp>

#include "xml/XercesFailures.hpp"

#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace opc::model {

XercesString::XercesString(const std::u16string& text) : XercesString(text.c_str()) {
}

XercesString::XercesString(const char16_t* text)
    : xmlString(translateLackOfMemory(
          [text] { return xercesc::XMLString::replicate(text ? text : xercesc::XMLUni::fgZeroLenString); })) {
}

XercesString::~XercesString() {
    xercesc::XMLString::release(&xmlString);
}

bool XercesString::operator==(const char16_t* other) const {
    return xercesc::XMLString::equals(xmlString, other);
}

} // namespace opc::model
