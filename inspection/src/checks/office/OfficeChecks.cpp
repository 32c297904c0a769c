#include "checks/Checks.hpp"

namespace opc::inspection {

void checkOffice(const Subject&, Findings&) {
}

} // namespace opc::inspection
