#pragma once

#include <opc/editing/Editor.hpp>

#include <string>
#include <utility>
#include <vector>

namespace opc::model {
class CoreProperties;
} // namespace opc::model

namespace opc::editing {

/// Changes of core properties, made in the order of the members. Texts are UTF-8; names are those of `model::CorePropertyField`.
struct CorePropertyChanges {
    bool clear = false;             ///< all are dropped first
    std::vector<std::string> unset; ///< names of properties that are dropped
    std::vector<std::pair<std::string, std::string>>
        set; ///< names and values. A time is "now", or has a W3CDTF form; keywords are
             ///< one text
};

/// The relationships of a package to its core properties, at one moment: writing core properties can make or replace one,
/// and that can break a signature.
class OPC_EDITING_EXPORT CorePropertiesRelationships {
public:
    /// @param package  open
    explicit CorePropertiesRelationships(const model::Package& package);

    /// Records how those of the editor's package differ from these.
    void recordChanges(Editor& editor) const;

private:
    std::vector<model::Relationship> relationships;
};

/// Replaces the core properties of a package, as often as you like. If it has none, their part and its relationship are made.
/// Each property that has another value is recorded, and what is made.
/// @throws as `PackageHelper::getCoreProperties` and `PackageHelper::mendCoreProperties`
OPC_EDITING_EXPORT void setCoreProperties(Editor& editor, const model::CoreProperties& properties);

/// Changes the core properties of a package, as often as you like. If it has none, their part and its relationship are made.
/// Each property that has another value is recorded, and what is made.
/// @throws opc::Exception  a name is unknown, or a value isn't a time. Nothing has changed
/// @throws as `PackageHelper::getCoreProperties`, unless all are dropped, and as `PackageHelper::mendCoreProperties`
OPC_EDITING_EXPORT void changeCoreProperties(Editor& editor, const CorePropertyChanges& changes);

} // namespace opc::editing
