#include "rules/RuleTable.hpp"

namespace opc::inspection {

RuleRows propertyRules() {
    return {nullptr, 0};
}

} // namespace opc::inspection
