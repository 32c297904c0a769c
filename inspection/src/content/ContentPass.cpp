#include "content/ContentPass.hpp"

#include "checks/Checks.hpp"

namespace opc::inspection {

void passOverContent(const Subject&, const std::vector<std::unique_ptr<ContentObserver>>&) {
}

std::vector<std::unique_ptr<ContentObserver>> makeContentObservers(const Subject&, Findings&) {
    return {};
}

} // namespace opc::inspection
