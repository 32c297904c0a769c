#include "checks/Checks.hpp"

namespace opc::inspection {

void checkProperties(const Subject&, Findings&) {
}

} // namespace opc::inspection
