#include "archive/PackageFaults.hpp"

#include <opc/core/Exception.hpp>
#include <opc/inspection/Inspection.hpp>
#include <opc/inspection/Reports.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <limits>
#include <vector>

namespace opc::editing::archive {

using namespace inspection;

namespace {

constexpr std::size_t MOST_TOLD = 10; // errors

Report inspectAll(const Archive& archive, const physical::ZipOptions& limits) {
    InspectionOptions options;
    options.limits = limits;
    options.mostFindingsOfARule =
        std::numeric_limits<std::size_t>::max(); // an unlisted one would be taken for a new one
    return inspect(archive, options);
}

bool isAboutSignatures(const Rule& rule) {
    return rule.id.substr(0, 3) == "M6." || rule.id == "SEC-72";
}

std::string describe(const Finding& finding) {
    const std::string& place = finding.place.part.empty() ? finding.place.item : finding.place.part;
    return std::string(finding.rule->id) + ", " + (place.empty() ? "" : place + ": ") + finding.message;
}

/// Opens it as programs do that read what others wrote.
void requireOpens(const std::filesystem::path& path, physical::ZipOptions limits) {
    limits.lenient = true;
    physical::ZipPackage archive(path, limits);
    physical::LenientPackage lenient(archive);
    model::Package package(lenient);
    package.open(interfaces::OpenMode::ReadOnly);
    package.close(true);
}

} // namespace

std::set<std::string> findFaults(const Archive& archive, const physical::ZipOptions& limits) {
    const Report report = inspectAll(archive, limits);
    const std::vector<std::string> prints = fingerprints(report);
    std::set<std::string> faults;
    for (std::size_t i = 0; i < prints.size(); ++i)
        if (report.findings[i].severity == Severity::Error)
            faults.insert(prints[i]);
    return faults;
}

void requireSound(const std::filesystem::path& package, const physical::ZipOptions& limits,
                  bool forgivesSignatures, const std::function<std::set<std::string>()>& known) {
    requireOpens(package, limits);
    const Report report = inspectAll(Archive(package, limits), limits);
    if (report.count(Severity::Error) == 0)
        return;
    const std::set<std::string> old = known();
    const std::vector<std::string> prints = fingerprints(report);
    std::string faults;
    std::size_t count = 0;
    for (std::size_t i = 0; i < prints.size(); ++i)
        if (report.findings[i].severity == Severity::Error &&
            !(forgivesSignatures && isAboutSignatures(*report.findings[i].rule)) &&
            old.count(prints[i]) == 0 && ++count <= MOST_TOLD)
            faults += (faults.empty() ? "" : "; ") + describe(report.findings[i]);
    if (count > MOST_TOLD)
        faults += "; and " + std::to_string(count - MOST_TOLD) + " more";
    if (count > 0)
        throw Exception("The package would have new errors: " + faults,
                        make_error_code(boost::system::errc::bad_message));
}

} // namespace opc::editing::archive
