#pragma once

#include <opc/editing/Change.hpp>
#include <opc/editing/Export.hpp>

#include <opc/inspection/Inspection.hpp>

#include <vector>

namespace opc::editing {

class Editor;

/// Which metadata of a package are taken out.
struct CleaningOptions {
    bool core = true;       ///< core properties: title, creator, times …
    bool extended = true;   ///< extended properties: company, manager, template, the program …
    bool custom = true;     ///< custom properties, and sensitivity labels among them
    bool thumbnails = true; ///< previews, of the package and of parts
};

/// Takes metadata of the package out: relationships of these kinds, and the parts that they lead to unless another
/// relationship leads there as well. Relationships that lead nowhere are taken out, too. What stands inside parts stays: see
/// `findMetadata`.
/// @throws as `Editor::deleteRelationship` and `Editor::deletePart`
OPC_EDITING_EXPORT void clean(Editor& editor, const CleaningOptions& options = {});

/// What a package tells of people and their machines, also inside its parts, as far as the profile `SECURITY` knows it: names
/// in comments and tracked changes, numbers of editing sessions, data of cameras, printers, embedded packages, custom XML …
/// That isn't all there can be: texts and images can tell anything.
/// @param changes  that were made to the package since: what they removed isn't told
/// @throws as `inspection::inspect`
OPC_EDITING_EXPORT std::vector<inspection::Finding> findMetadata(const inspection::Archive& archive,
                                                                 const std::vector<Change>& changes = {},
                                                                 const physical::ZipOptions& limits = {});

} // namespace opc::editing
