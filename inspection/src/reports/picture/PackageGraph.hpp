#pragma once

#include "subject/Subject.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace opc::inspection {

/// The package, a part, or what a relationship leads to without finding a part.
struct GraphNode {
    enum class Kind { Package, Part, External, Missing };

    Kind kind;
    std::string name; ///< of the part; the target
    std::string contentType{};
    std::uint64_t size = 0;
    bool isReached = true; ///< a path leads there from the package
    bool isSigned = false;
    std::size_t column = 0; ///< the distance from the package
    std::size_t count = 1;  ///< how many it stands for
};

struct GraphEdge {
    std::size_t from, to; ///< indices of nodes
    bool isSigned = false;
    std::string type; ///< the last segment of the relationship's type; empty if it stands for several
    std::size_t count = 1;
};

/// Parts without relationships parts, and the relationships between them.
struct PackageGraph {
    std::vector<GraphNode> nodes; ///< the first is the package
    std::vector<GraphEdge> edges;
    bool hasSignatures = false;
};

/// Parts that aren't reached get the column behind the last.
PackageGraph makeGraph(const Subject& subject);

/// The same graph, small enough to be looked at: at most some ten columns of some forty nodes each, and some thousand
/// edges. Far columns become one, and many nodes of a kind in a column become one.
PackageGraph condense(const PackageGraph& graph);

} // namespace opc::inspection
