#include "rules/RuleTable.hpp"

namespace opc::inspection {

RuleRows relationshipRules() {
    return {nullptr, 0};
}

} // namespace opc::inspection
