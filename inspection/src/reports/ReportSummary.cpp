#include <opc/inspection/Reports.hpp>

#include <algorithm>
#include <set>
#include <sstream>

namespace opc::inspection {

void ReportSummary::add(const InspectedFile& file) {
    ++fileCount;
    if (!file.failure.empty())
        failed.emplace_back(file.name, file.failure);
    std::set<const Rule*> seen;
    for (std::size_t i = 0; i < file.report.findings.size(); ++i) {
        const Finding& finding = file.report.findings[i];
        if (file.isKnown(i)) {
            ++knownCount;
            ++byRule[finding.rule].known;
            continue;
        }
        ++counts[static_cast<std::size_t>(finding.severity)];
        OfRule& rule = byRule[finding.rule];
        ++rule.findings;
        rule.severity = std::max(rule.severity, finding.severity);
        seen.insert(finding.rule);
    }
    for (const Rule* rule : seen) {
        ++byRule[rule].files;
        if (const auto more = file.report.unlisted.find(std::string(rule->id));
            more != file.report.unlisted.end())
            byRule[rule].findings += more->second;
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
