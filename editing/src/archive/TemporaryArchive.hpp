#pragma once

#include "mending/ArchivePlan.hpp"

#include <opc/physical/ZipOptions.hpp>

namespace opc::editing::mending {

/// Carries out a plan in a temporary file without a name.
/// @throws Exception  the file can't be written
inspection::Archive makeTemporaryArchive(const ArchivePlan& plan, const physical::ZipOptions& limits);

} // namespace opc::editing::mending
