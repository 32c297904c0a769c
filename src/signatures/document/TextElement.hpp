#pragma once

#include <opc/model/XercesHelper.hpp>

namespace opc::model {

/// Appends an element that contains only `text`.
inline void appendTextElement(xercesc::DOMElement* parent, const XercesString& name,
                              const std::u16string& text) {
    XercesHelper::setElementText(XercesHelper::appendElement(parent, name), text);
}

} // namespace opc::model
