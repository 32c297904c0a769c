#pragma once

#include <opc/model/XercesString.hpp>

#include <xercesc/util/XercesDefs.hpp>

#include <cstddef>
#include <string>

XERCES_CPP_NAMESPACE_BEGIN
class DOMElement;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

/// How many elements of a valid document aren't among those that were read from it. Elements are found by their
/// names without a prefix, so that those with a prefix aren't read; nor is a root that isn't the usual one.
/// @param usualName  of the root, in `namespaceURI`
/// @param read       how many elements below the root were read
std::size_t countUnread(const xercesc::DOMElement* root, const XercesString& namespaceURI,
                        const XercesString& usualName, std::size_t read);

/// Why a document with unread elements can't be written anew.
std::string describeUnread(std::size_t count);

} // namespace opc::model
