#include "checks/Checks.hpp"
#include "checks/office/MarkupCompatibility.hpp"
#include "checks/office/RelationshipIds.hpp"
#include "checks/security/BinaryWorkbook.hpp"
#include "checks/security/ContentKindChecks.hpp"
#include "checks/security/MarkupChecks.hpp"

#include <algorithm>
#include <initializer_list>

namespace opc::inspection {

namespace {

bool wantsAny(const Findings& findings, std::initializer_list<std::string_view> rules) {
    return std::any_of(rules.begin(), rules.end(),
                       [&findings](std::string_view rule) { return findings.wants(rule); });
}

} // namespace

std::vector<std::unique_ptr<ContentObserver>> makeContentObservers(const Subject& subject,
                                                                   Findings& findings) {
    std::vector<std::unique_ptr<ContentObserver>> observers;
    if (wantsAny(findings, {"MCE-1", "MCE-2", "MCE-3", "MCE-4", "MCE-5", "MCE-6", "MCE-7", "MCE-8", "MCE-9",
                            "MCE-10", "MCE-11"}))
        observers.push_back(makeMarkupCompatibilityObserver(findings));
    if (findings.wants("P1-5"))
        observers.push_back(makeRelationshipIdObserver(subject, findings));
    if (wantsAny(findings, {"SEC-20", "SEC-22", "SEC-30", "SEC-41", "SEC-68"}))
        observers.push_back(makeContentKindObserver(subject, findings));
    if (wantsAny(findings, {"SEC-08", "SEC-14", "SEC-15", "SEC-23", "SEC-25", "SEC-26", "SEC-29", "SEC-43",
                            "SEC-63", "SEC-65", "SEC-67"}))
        observers.push_back(makeMarkupObserver(findings));
    if (wantsAny(findings, {"SEC-25", "SEC-29", "SEC-65"}))
        observers.push_back(makeBinaryWorkbookObserver(findings));
    return observers;
}

} // namespace opc::inspection
