#pragma once

#include <string>

namespace opc::model {

class RelationshipManager;

/// Composes a relationships part whose values are plain, as nearly all are: the very bytes that Xerces would
/// write.
/// @return whether the values are. If not, Xerces must write the part, and `document` means nothing
bool composePlainRelationships(const RelationshipManager& manager, std::string& document);

} // namespace opc::model
