#pragma once

#include "xml/DocumentFailures.hpp"
#include "xml/DocumentOutput.hpp"

#include <string>

namespace opc::model {

/// Has Xerces write a document.
/// @param document   takes the bytes in place of what it held
/// @param serialize  called with a stream for the bytes
/// @throws InvalidPartContent  for an `InvalidXMLDocument`
template <typename Serialize>
void serializeDocument(std::string& document, const Serialize& serialize) {
    document.clear();
    StringOutput output(document);
    translateDocumentFailures([&] { serialize(output); });
}

/// Makes a document of any kind: composes it if all its values are plain, and has Xerces write it if not. Both write
/// the same bytes.
/// @param document  takes the bytes in place of what it held
/// @param compose   called with `document`; gives whether all values are plain. If not, what it wrote is dropped
/// @param serialize, exceptions  as for `serializeDocument`
template <typename Compose, typename Serialize>
void composeOrSerialize(std::string& document, const Compose& compose, const Serialize& serialize) {
    if (!compose(document))
        serializeDocument(document, serialize);
}

} // namespace opc::model
