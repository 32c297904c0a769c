#pragma once

#include "checks/Findings.hpp"
#include "subject/Subject.hpp"

namespace opc::inspection {

/// Checks which parts relationships lead to: those that none reaches, and those that are reached as two things.
void checkReach(const Subject& subject, Findings& findings);

} // namespace opc::inspection
