#pragma once

#include <opc/editing/Change.hpp>
#include <opc/inspection/PackageGraph.hpp>

#include <set>
#include <string>
#include <vector>

namespace opc::editing::archive {

/// How a package differs from what it was.
/// @param replaced  the names of parts whose content has changed
std::vector<Change> findChanges(const inspection::PackageGraph& before, const inspection::PackageGraph& after,
                                const std::set<std::string>& replaced);

} // namespace opc::editing::archive
