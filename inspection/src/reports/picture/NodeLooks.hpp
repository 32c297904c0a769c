#pragma once

#include <opc/inspection/PackageGraph.hpp>

#include <string>

namespace opc::inspection {

/// How pictures show nodes of one meaning.
struct NodeLook {
    const char* name; ///< one word
    const char* meaning;
    const char* fill;
    const char* stroke;
    bool isDashed = false;
};

/// Each is one object in the whole library: they are compared by address.
/// @{
inline constexpr NodeLook PACKAGE_LOOK{"package", "package", "#33475b", "#33475b"};
inline constexpr NodeLook PLAIN_LOOK{"plain", "part", "#f1f4f8", "#8493a5"};
inline constexpr NodeLook SIGNED_LOOK{"signed", "named by a signature", "#dcf2e1", "#2f8f4e"};
inline constexpr NodeLook UNREACHED_LOOK{"unreached", "nothing leads there", "#efe3fa", "#8a4fbf", true};
inline constexpr NodeLook EXTERNAL_LOOK{"external", "outside the package", "#fdf0d0", "#cf8f12"};
inline constexpr NodeLook MISSING_LOOK{"missing", "missing", "#fde3e1", "#d0392b", true};
/// @}

const NodeLook& lookOf(const GraphNode& node);

/// The look of what it leads to, unless that is a part.
const NodeLook& lookOf(const GraphEdge& edge, const PackageGraph& graph);

/// The name, or the number of parts with a pattern. A name that is too long keeps its end, behind an ellipsis.
/// @param mostCharacters  of the name
std::string labelOf(const GraphNode& node, std::size_t mostCharacters);

/// What a viewer shows of the node under the pointer, in lines. A name that no viewer could show is shortened.
std::string titleOf(const GraphNode& node);
std::string titleOf(const GraphEdge& edge);

} // namespace opc::inspection
