#pragma once

#include "checks/Findings.hpp"
#include "content/ContentObserver.hpp"

#include <memory>

namespace opc::inspection {

/// Whether the relationships that the markup of a part names by their ids exist and have the right types (P1-5).
/// @param subject, findings  must outlive the observer
std::unique_ptr<ContentObserver> makeRelationshipIdObserver(const Subject& subject, Findings& findings);

} // namespace opc::inspection
