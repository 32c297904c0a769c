#pragma once

#include "checks/Findings.hpp"
#include "content/ContentObserver.hpp"

#include <memory>

namespace opc::inspection {

/// Tells of the formulas, names, hidden sheets and DDE sources of binary workbooks (xlsb), whose parts aren't XML.
std::unique_ptr<ContentObserver> makeBinaryWorkbookObserver(Findings& findings);

} // namespace opc::inspection
