#pragma once

#include <opc/editing/Export.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace opc::editing {

/// One change to a package, as data. Texts are UTF-8.
struct Change {
    enum class Kind {
        PartAdded,           ///< `after`: its content type and size
        PartRemoved,         ///< with its relationships; `before`: its content type and size
        PartRenamed,         ///< with its relationships; `place` is the old name, and `after` the new one
        ContentReplaced,     ///< `before` and `after`: the size
        ContentTypeChanged,  ///< `before` and `after`: the content type
        RelationshipAdded,   ///< `after`: its target and type
        RelationshipRemoved, ///< `before`: its target and type
        RelationshipChanged, ///< `before` and `after`: its target and type
        PropertyChanged, ///< `before` and `after`: the value; an empty one for a property that isn't there
        Mended ///< something outside the model; `before` and `after` say what it was and is, as people read it
    };

    /// What something was before the change, or is after it.
    struct State {
        std::string text;                  ///< by the kind: a content type, a name, a target, a value
        std::string type;                  ///< of a relationship
        bool isExternal = false;           ///< of a relationship
        std::optional<std::uint64_t> size; ///< of a part's content, if the store knows it
    };

    Kind kind;
    std::string place; ///< the part, or the source of the relationship; "/" for the package
    std::string name;  ///< the Id of the relationship, or the name of the property; else empty
    State before, after;
};

/// The name of a kind, in words with hyphens: `part-added`, `relationship-removed`.
OPC_EDITING_EXPORT std::string nameOf(Change::Kind kind);

/// Says the change in one line of English, without a full stop.
OPC_EDITING_EXPORT std::string describe(const Change& change);

} // namespace opc::editing
