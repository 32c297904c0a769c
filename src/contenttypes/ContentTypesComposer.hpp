#pragma once

#include <string>

namespace opc::model {

class ContentTypeMap;

/// Composes the document in the content types stream, byte for byte as Xerces would write it. It has all `Override`
/// entries, and each `Default` that a part uses.
/// @return whether the document is plain. If not, ignore `document` and let Xerces write
bool composePlainContentTypes(const ContentTypeMap& map, std::string& document);

} // namespace opc::model
