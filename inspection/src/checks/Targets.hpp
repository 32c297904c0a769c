#pragma once

#include "subject/Subject.hpp"

#include <opc/inspection/Inspection.hpp>

namespace opc::inspection {

/// Fills in `Place::target` of each finding about a relationship.
void nameTargets(const Subject& subject, Report& report);

} // namespace opc::inspection
