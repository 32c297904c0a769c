#include "rules/RuleTable.hpp"

namespace opc::inspection {

RuleRows signatureRules() {
    return {nullptr, 0};
}

} // namespace opc::inspection
