#pragma once

#include "checks/Findings.hpp"
#include "content/ContentObserver.hpp"

#include <memory>

namespace opc::inspection {

/// What the markup of parts shows about a document's safety: fields, formulas, actions, connections, own ribbons, tracked
/// changes (SEC-08, 14, 15, 23, 25, 26, 29, 43, 63, 65, 67).
/// @param findings  must outlive the observer
std::unique_ptr<ContentObserver> makeMarkupObserver(Findings& findings);

} // namespace opc::inspection
