#pragma once

#include <opc/editing/Editor.hpp>

namespace opc::editing {

/// Renames a part. Content, content type and relationships go with it, and keep the Ids. Every relationship that leads to the
/// part leads to its new name, with its fragment; its own relationships lead where they have led. The names may differ in
/// letter case only. After a failure, abandon the package.
/// @param from  the part; nothing happens if `to` is the same text
/// @param to    a name as `Package::createPart` takes it
/// @throws PartNotFound
/// @throws opc::Exception              the part belongs to signatures, which are found by its name
/// @throws InvalidRelationshipContent  relationships of the part, or some that lead there, can't be changed
/// @throws as `Package::createPart`    the name is in use, derived from another one [M1.11], or no name for a part
OPC_EDITING_EXPORT void movePart(Editor& editor, const model::PartName& from, const model::PartName& to);

} // namespace opc::editing
