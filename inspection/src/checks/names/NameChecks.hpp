#pragma once

#include "checks/Findings.hpp"
#include "subject/Subject.hpp"

namespace opc::inspection {

/// The concerns of `checkNames`.
/// @{

void checkSpelling(const ArchiveItem& item, Findings& findings);  ///< one name by itself
void checkCollisions(const Subject& subject, Findings& findings); ///< names that mean the same, or that nest
void checkExtraction(const Subject& subject, Findings& findings); ///< what file systems make of the names

/// @}

/// The name of an item as a part would be called: with slashes alone and without the number of a piece. Empty for items
/// that can't be meant to be parts: the content types stream, folders, `[trash]/`, `__MACOSX/`.
std::string intendedName(const ArchiveItem& item);

} // namespace opc::inspection
