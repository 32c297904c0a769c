#pragma once

#include <opc/inspection/Archive.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// The package, a part, or what a relationship leads to without finding a part.
struct GraphNode {
    enum class Kind { Package, Part, External, Missing };

    Kind kind;
    std::string name; ///< of the part; the target
    std::string contentType{};
    std::uint64_t size = 0;
    bool isReached = true;  ///< a path leads there from the package
    bool isSigned = false;  ///< a signature names it
    std::size_t column = 0; ///< the distance from the node that the graph begins with
    std::size_t count = 1;  ///< how many it stands for
};

/// A relationship.
struct GraphEdge {
    std::size_t from, to; ///< indices of nodes
    bool isSigned = false;
    std::string type; ///< a URI; empty if it stands for several of different types
    std::string id{};
    std::size_t count = 1; ///< how many it stands for

    std::string_view typeName() const; ///< the last segment of the type
};

/// Parts without relationships parts, and the relationships between them. Texts are UTF-8 and stand as the package has
/// them.
struct PackageGraph {
    std::vector<GraphNode> nodes; ///< the first is where it begins: the package
    std::vector<GraphEdge> edges; ///< ordered by `from`
    bool hasSignatures = false;
};

/// The whole graph of a package, also of one that the model refuses. Parts that no path reaches from the package get the
/// column behind the last. Its size is linear in that of the package.
/// @throws opc::Exception  the archive's bytes can't be read
OPC_INSPECTION_EXPORT PackageGraph makeGraph(const Archive& archive, const physical::ZipOptions& limits = {});

/// The index of the package ("/") or of a part; the case of ASCII letters doesn't count. Nothing if there is no such part.
OPC_INSPECTION_EXPORT std::optional<std::size_t> findNode(const PackageGraph& graph, std::string_view name);

/// What is reached from a node by at most `depth` relationships. It becomes the first node.
OPC_INSPECTION_EXPORT PackageGraph cutOut(const PackageGraph& graph, std::size_t from,
                                          std::size_t depth = std::numeric_limits<std::size_t>::max());

/// @name The graph as text. Colours show external targets, targets that are missing, parts that nothing leads to, and what
/// signatures name. Names are escaped, so that none becomes anything but a name; control characters become blanks.
/// @{

/// For Graphviz.
OPC_INSPECTION_EXPORT std::string toDOT(const PackageGraph& graph);

/// A flowchart of Mermaid.
OPC_INSPECTION_EXPORT std::string toMermaid(const PackageGraph& graph);

/// A picture without script. Many parts of a kind are drawn as one, so that it is never too large to look at.
OPC_INSPECTION_EXPORT std::string toSVG(const PackageGraph& graph);

/// @}

} // namespace opc::inspection
