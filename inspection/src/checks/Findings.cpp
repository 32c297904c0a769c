#include "checks/Findings.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>

namespace opc::inspection {

namespace {

bool names(const std::vector<std::string>& ids, const Rule& rule) {
    return std::any_of(ids.begin(), ids.end(), [&rule](const std::string& id) {
        const std::vector<const Rule*> named = findRules(id);
        return std::find(named.begin(), named.end(), &rule) != named.end();
    });
}

} // namespace

Findings::Findings(const InspectionOptions& options, Report& report) : options(options), report(report) {
    chosen.reserve(rules().size());
    for (const Rule* rule : rules()) {
        const bool isIn =
            options.only.empty() ? (rule->profiles & options.profiles) != 0 : names(options.only, *rule);
        if (isIn && !names(options.never, *rule))
            chosen.insert(rule->id);
    }
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
