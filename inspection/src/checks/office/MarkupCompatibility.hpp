#pragma once

#include "checks/Findings.hpp"
#include "content/ContentObserver.hpp"

#include <memory>

namespace opc::inspection {

/// How parts use markup compatibility, ECMA-376 Part 3 (MCE-1 to MCE-11).
/// @param findings  must outlive the observer
std::unique_ptr<ContentObserver> makeMarkupCompatibilityObserver(Findings& findings);

} // namespace opc::inspection
