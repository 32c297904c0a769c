#pragma once

#include "checks/Findings.hpp"
#include "subject/Subject.hpp"

#include <string>
#include <string_view>

namespace opc::inspection {

/// What a package tells about its safety without a look into its parts. Each function is one concern.
/// @{

void checkExternalTargets(const Subject& subject, Findings& findings); ///< SEC-01 to SEC-18, SEC-67
void checkKindsOfParts(const Subject& subject,
                       Findings& findings); ///< what types say: macros, objects, comments …
void checkHiddenItems(const Subject& subject, Findings& findings);                         ///< SEC-31
void checkFileName(const Subject& subject, Findings& findings, std::string_view fileName); ///< SEC-40

/// @}

/// The user whose folder a path leads through (`C:\Users\name\…`, `/home/name/…`); empty if there is none.
std::string userIn(std::string_view path);

} // namespace opc::inspection
