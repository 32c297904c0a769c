#include "rules/RuleTable.hpp"

namespace opc::inspection {

RuleRows contentTypeRules() {
    return {nullptr, 0};
}

} // namespace opc::inspection
