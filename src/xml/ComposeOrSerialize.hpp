#pragma once

#include "xml/DocumentFailures.hpp"
#include "xml/DocumentOutput.hpp"

#include <string>

namespace opc::model {

/// Makes a document with Xerces.
/// @param document   receives the bytes; its old content is lost
/// @param serialize  called with a stream for the bytes
/// @throws InvalidPartContent  for an `InvalidXMLDocument`
template <typename Serialize>
void serializeDocument(std::string& document, const Serialize& serialize) {
    document.clear();
    StringOutput output(document);
    translateDocumentFailures([&] { serialize(output); });
}

/// Makes a document of any kind: composes it if all its values are plain; otherwise Xerces writes it. Both ways write
/// the same bytes.
/// @param document  receives the bytes; its old content is lost
/// @param compose   called with `document`; returns whether all values are plain. If not, what it wrote is dropped
/// @param serialize, exceptions  as for `serializeDocument`
template <typename Compose, typename Serialize>
void composeOrSerialize(std::string& document, const Compose& compose, const Serialize& serialize) {
    if (!compose(document))
        serializeDocument(document, serialize);
}

} // namespace opc::model
