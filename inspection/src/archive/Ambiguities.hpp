#pragma once

#include "zip/src/ArchiveDirectory.hpp"

#include <opc/inspection/Archive.hpp>

#include <vector>

namespace opc::inspection::archive {

/// By what other programs may take items, or the archive, for something else: items are counted as in `Archive::items()`.
/// @return nothing of an archive whose records can't all be read: its faults say so
std::vector<physical::zip::Ambiguity> findAmbiguities(const Archive& archive);

} // namespace opc::inspection::archive
