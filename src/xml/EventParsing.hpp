#pragma once

#include <opc/model/XmlEvents.hpp>

namespace opc::model {

/// What `readXmlDocument` does, by the parser alone, whatever the form of the document.
void parseXmlDocument(InputStream& stream, XmlEvents& events);

} // namespace opc::model
