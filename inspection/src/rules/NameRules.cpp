#include "rules/RuleTable.hpp"

namespace opc::inspection {

RuleRows nameRules() {
    return {nullptr, 0};
}

} // namespace opc::inspection
