#include "checks/Checks.hpp"

namespace opc::inspection {

void checkRelationships(const Subject&, Findings&) {
}

} // namespace opc::inspection
