#pragma once

#include "checks/Findings.hpp"
#include "subject/Subject.hpp"

namespace opc::inspection {

/// Checks where one relationship leads, by the rules for references and by what is there.
/// @param place  of the relationship
void checkTarget(const Subject& subject, const RelationshipsView& view, const RelationshipView& entry,
                 const Place& place, Findings& findings);

} // namespace opc::inspection
