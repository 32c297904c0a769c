#include "checks/Checks.hpp"

namespace opc::inspection {

void checkSecurity(const Subject&, Findings&, const InspectionOptions&) {
}

} // namespace opc::inspection
