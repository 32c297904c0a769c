#pragma once

#include <opc/editing/Change.hpp>
#include <opc/inspection/PackageGraph.hpp>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace opc::editing::archive {

/// How a package differs from what it was.
/// @param replaced  the names of parts whose content has changed
std::vector<Change> findChanges(const inspection::PackageGraph& before, const inspection::PackageGraph& after,
                                const std::set<std::string>& replaced);

/// The signatures of a package that don't hold after changes: their parts. None if the package can't be opened: then no
/// signature of it can be verified.
std::vector<std::string> findBrokenSignatures(const std::filesystem::path& package,
                                              const physical::ZipOptions& limits,
                                              const std::vector<Change>& changes);

} // namespace opc::editing::archive
