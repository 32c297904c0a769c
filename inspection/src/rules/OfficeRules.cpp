#include "rules/RuleTable.hpp"

namespace opc::inspection {

RuleRows officeRules() {
    return {nullptr, 0};
}

} // namespace opc::inspection
