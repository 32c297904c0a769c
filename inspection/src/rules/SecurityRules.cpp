#include "rules/RuleTable.hpp"

namespace opc::inspection {

RuleRows securityRules() {
    return {nullptr, 0};
}

} // namespace opc::inspection
