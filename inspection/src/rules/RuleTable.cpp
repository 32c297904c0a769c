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

bool isSame(std::string_view left, std::string_view right) {
    return left.size() == right.size() && ::strncasecmp(left.data(), right.data(), right.size()) == 0;
}

bool hasNumber(std::string_view list, std::string_view number) {
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(", "), list.size());
        if (isSame(list.substr(0, end), number))
            return true;
        list.remove_prefix(std::min(end + 2, list.size()));
    }
    return false;
}

} // namespace

RuleList rules() {
    static const std::vector<const Rule*> all = allRules();
    return {all.data(), all.data() + all.size()};
}

const Rule* findRule(std::string_view id) {
    const RuleList all = rules();
    const auto* const found =
        std::find_if(all.begin(), all.end(), [id](const Rule* rule) { return isSame(rule->id, id); });
    return found == all.end() ? nullptr : *found;
}

std::vector<const Rule*> findRules(std::string_view id) {
    if (const Rule* const rule = findRule(id))
        return {rule};
    std::vector<const Rule*> found;
    for (const Rule* rule : rules())
        if (hasNumber(rule->standard, id))
            found.push_back(rule);
    return found;
}

} // namespace opc::inspection
