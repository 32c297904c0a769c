#include "checks/Checks.hpp"

namespace opc::inspection {

void checkContentTypes(const Subject&, Findings&) {
}

} // namespace opc::inspection
