#pragma once

#include <opc/inspection/PackageGraph.hpp>

#include "subject/Subject.hpp"

namespace opc::inspection {

PackageGraph makeGraph(const Subject& subject);

/// The same graph, small enough to be looked at: at most some ten columns of some forty nodes each, and some thousand
/// edges. Far columns become one, and many nodes of a kind in a column become one.
PackageGraph condense(const PackageGraph& graph);

} // namespace opc::inspection
