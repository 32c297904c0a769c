#include "checks/Checks.hpp"

namespace opc::inspection {

void checkContainer(const Subject&, Findings&) {
}

} // namespace opc::inspection
