#pragma once

#include <opc/editing/Editor.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace opc::editing {

struct RemoveOptions {
    bool incoming = false; ///< also the relationships that lead to what is removed
    bool cascade = false;  ///< also the parts that only the removed ones lead to
};

/// Removes parts with their relationships.
/// @param patterns  UTF-8: names of parts, in which `*` stands for any characters but slashes, and `**` for any. The case of
///                  ASCII letters doesn't count. A part whose name is the pattern itself counts alone
/// @throws PartNotFound  nothing matches one of them; nothing has changed
/// @throws as `Package::deletePart` and `RelationshipSource::deleteRelationship`
OPC_EDITING_EXPORT void removeParts(Editor& editor, const std::vector<std::string>& patterns,
                                    const RemoveOptions& options = {});

/// Removes the parts to which no path of relationships leads from the package. What a signature signs stays, and so does what
/// that leads to.
/// @return how many parts were removed
/// @throws InvalidRelationshipContent  relationships can't be read, and nobody knows where they lead; nothing has changed
/// @throws opc::Exception  programs find the parts of this format in other ways: XPS, NuGet, Visual Studio and Windows packages;
///                         nothing has changed
OPC_EDITING_EXPORT std::size_t collectUnreachable(Editor& editor);

} // namespace opc::editing
