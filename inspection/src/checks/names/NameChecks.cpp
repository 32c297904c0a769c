#include "checks/Checks.hpp"

namespace opc::inspection {

void checkNames(const Subject&, Findings&) {
}

} // namespace opc::inspection
