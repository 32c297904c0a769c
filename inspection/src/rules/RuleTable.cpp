#include "rules/RuleTable.hpp"

#include <strings.h>

#include <algorithm>
#include <vector>

namespace opc::inspection {

namespace {

std::vector<const Rule*> allRules() {
    std::vector<const Rule*> all;
    for (const RuleRows rows : {containerRules(), nameRules(), contentTypeRules(), relationshipRules(),
                                propertyRules(), signatureRules(), officeRules(), securityRules()})
        for (std::size_t i = 0; i < rows.count; ++i)
            all.push_back(rows.first + i);
    return all;
}

} // namespace

RuleList rules() {
    static const std::vector<const Rule*> all = allRules();
    return {all.data(), all.data() + all.size()};
}

const Rule* findRule(std::string_view id) {
    const RuleList all = rules();
    const auto found = std::find_if(all.begin(), all.end(), [id](const Rule* rule) {
        return rule->id.size() == id.size() && ::strncasecmp(rule->id.data(), id.data(), id.size()) == 0;
    });
    return found == all.end() ? nullptr : *found;
}

} // namespace opc::inspection
