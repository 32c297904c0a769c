#include "rules/RuleTable.hpp"

namespace opc::inspection {

RuleRows containerRules() {
    return {nullptr, 0};
}

} // namespace opc::inspection
