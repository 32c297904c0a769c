#pragma once

#include <string>

namespace opc::model {

class RelationshipManager;

/// Composes a relationships part whose values are plain, as nearly always, byte for byte as Xerces would write it.
/// @return whether the values are plain. If not, ignore `document` and let Xerces write
bool composePlainRelationships(const RelationshipManager& manager, std::string& document);

} // namespace opc::model
