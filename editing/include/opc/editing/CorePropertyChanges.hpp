#pragma once

#include <opc/editing/Editor.hpp>

#include <opc/model/CoreProperties.hpp>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace opc::editing {

/// Changes of core properties, made in the order of the members. Texts are UTF-8; names are those of `model::CorePropertyField`.
struct CorePropertyChanges {
    bool clear = false;             ///< all are dropped first
    std::vector<std::string> unset; ///< names of properties that are dropped
    std::vector<std::pair<std::string, std::string>>
        set; ///< names and values. A time is "now" (`Editor::now`), or has a W3CDTF form; keywords are
             ///< one text
    std::optional<model::CoreProperties::KeywordList> keywords; ///< all of them, with their languages
};

/// Replaces the core properties of a package, as often as you like. If it has none, their part and its relationship are made;
/// if the relationship leads to no part, the part is made. Each property that has another value is recorded, and what is
/// made; if there is nothing of that, the document keeps its bytes.
/// @throws as `PackageHelper::getCoreProperties` and `PackageHelper::mendCoreProperties`
OPC_EDITING_EXPORT void setCoreProperties(Editor& editor, const model::CoreProperties& properties);

/// Changes the core properties of a package in the same way.
/// @throws opc::Exception  a name is unknown, or a value isn't a time. Nothing has changed
/// @throws as `PackageHelper::getCoreProperties`, unless all are dropped, and as `PackageHelper::mendCoreProperties`
OPC_EDITING_EXPORT void changeCoreProperties(Editor& editor, const CorePropertyChanges& changes);

} // namespace opc::editing
