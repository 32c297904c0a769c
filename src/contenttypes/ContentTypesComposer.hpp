#pragma once

#include <string>

namespace opc::model {

class ContentTypeMap;

/// Composes the document in the content types stream: the very bytes that Xerces would write. It holds all
/// `Override`, and each `Default` that a part rests on.
/// @return whether the document is plain. If not, Xerces must write it, and `document` means nothing
bool composePlainContentTypes(const ContentTypeMap& map, std::string& document);

} // namespace opc::model
