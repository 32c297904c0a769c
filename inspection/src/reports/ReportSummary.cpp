#include <opc/inspection/Reports.hpp>

#include <algorithm>
#include <sstream>

namespace opc::inspection {

void ReportSummary::add(const InspectedFile& file) {
    ++fileCount;
    if (!file.failure.empty())
        failed.emplace_back(file.name, file.failure);
    std::map<const Rule*, Severity> seen;
    for (std::size_t i = 0; i < file.report.findings.size(); ++i) {
        const Finding& finding = file.report.findings[i];
        if (file.isKnown(i)) {
            ++knownCount;
            ++byRule[finding.rule].known;
            continue;
        }
        ++counts[static_cast<std::size_t>(finding.severity)];
        ++byRule[finding.rule].findings;
        Severity& worst = seen.try_emplace(finding.rule, Severity::Info).first->second;
        worst = std::max(worst, finding.severity);
    }
    for (const auto& [rule, severity] : seen) {
        OfRule& sums = byRule[rule];
        ++sums.files;
        sums.severity = std::max(sums.severity, severity);
        if (const auto more = file.report.unlisted.find(std::string(rule->id));
            more != file.report.unlisted.end()) {
            sums.findings += more->second;
            counts[static_cast<std::size_t>(severity)] += more->second;
        }
    }
}

ReportWriter::ReportWriter(std::ostream& output, std::unique_ptr<ReportFormat> format)
    : output(output), format(std::move(format)) {
    this->format->begin(output);
}

void ReportWriter::add(const InspectedFile& file) {
    std::ostringstream text;
    format->write(text, file);
    sums.add(file);
    if (text.tellp() == 0)
        return;
    if (hasWritten)
        output << format->separator();
    output << text.str();
    hasWritten = true;
}

void ReportWriter::end() {
    format->end(output, sums);
}

ReportFormat::~ReportFormat() = default;

void ReportFormat::begin(std::ostream&) const {
}

void ReportFormat::end(std::ostream&, const ReportSummary&) const {
}

} // namespace opc::inspection
