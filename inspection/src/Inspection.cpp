#include <opc/inspection/Inspection.hpp>

#include "SubjectAnswers.hpp"
#include "checks/Checks.hpp"
#include "checks/Targets.hpp"
#include "content/ContentPass.hpp"

#include <algorithm>

namespace opc::inspection {

std::uint64_t Report::count(Severity severity) const {
    return static_cast<std::uint64_t>(
        std::count_if(findings.begin(), findings.end(),
                      [severity](const Finding& finding) { return finding.severity == severity; }));
}

Report inspect(const Archive& archive, const InspectionOptions& options) {
    return inspect(Subject(archive, options.limits), options);
}

Report inspect(const Subject& subject, const InspectionOptions& options) {
    Report report;
    Findings findings(options, report);
    report.format = subject.format();
    checkContainer(subject, findings);
    checkNames(subject, findings);
    checkContentTypes(subject, findings);
    checkRelationships(subject, findings);
    checkProperties(subject, findings);
    checkSignatures(subject, findings);
    checkOffice(subject, findings);
    checkSecurity(subject, findings, options);
    passOverContent(subject, findings, makeContentObservers(subject, findings));
    nameTargets(subject, report);
    return report;
}

} // namespace opc::inspection
