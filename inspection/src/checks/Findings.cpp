#include "checks/Findings.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <array>

namespace opc::inspection {

namespace {

bool names(const std::vector<std::string>& ids, const Rule& rule) {
    return std::any_of(ids.begin(), ids.end(), [&rule](const std::string& id) {
        const std::vector<const Rule*> named = findRules(id);
        return std::find(named.begin(), named.end(), &rule) != named.end();
    });
}

bool isOf(const Rule& rule, unsigned profiles) {
    return (rule.profiles & profiles) != 0;
}

/// The ids of the rules of some profiles. They are made once: most packages are so small that it would be felt.
const RuleIds& rulesOf(unsigned profiles) {
    static const std::array<RuleIds, EVERY_PROFILE + 1> ids = [] {
        std::array<RuleIds, EVERY_PROFILE + 1> made;
        for (unsigned i = 0; i < made.size(); ++i)
            for (const Rule* rule : rules())
                if (isOf(*rule, i))
                    made[i].insert(rule->id);
        return made;
    }();
    return ids[profiles & EVERY_PROFILE];
}

} // namespace

Findings::Findings(const InspectionOptions& options, Report& report) : options(options), report(report) {
    if (options.only.empty() && options.never.empty()) {
        chosen = &rulesOf(options.profiles);
        return;
    }
    for (const Rule* rule : rules()) {
        const bool isIn = options.only.empty() ? isOf(*rule, options.profiles) : names(options.only, *rule);
        if (isIn && !names(options.never, *rule))
            named.insert(rule->id);
    }
    chosen = &named;
}

void Findings::add(std::string_view rule, Place place, std::string message, std::string hint) {
    if (const Rule* const found = findRule(rule); found != nullptr && wants(rule))
        add(rule, found->severity, std::move(place), std::move(message), std::move(hint));
}

void Findings::add(std::string_view rule, Severity severity, Place place, std::string message,
                   std::string hint) {
    if (!wants(rule))
        return;
    if (counts[rule]++ >= options.mostFindingsOfARule) {
        ++report.unlisted[std::string(rule)];
        return;
    }
    report.findings.push_back(
        {findRule(rule), severity, std::move(place), std::move(message), std::move(hint)});
}

} // namespace opc::inspection
