#include <opc/inspection/Reports.hpp>

#include "reports/ReportTexts.hpp"

#include <opc/core/PrintableText.hpp>

#include <ostream>

namespace opc::inspection {

namespace {

class TextReport : public ReportFormat {
public:
    explicit TextReport(bool colored) : colored(colored) {}

    void write(std::ostream& output, const InspectedFile& file) const override {
        if (!file.failure.empty())
            output << withoutControlCharacters("FAILURE: " + file.name + ": " + file.failure) << '\n';
        for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Info})
            for (std::size_t i = 0; i < file.report.findings.size(); ++i)
                if (file.report.findings[i].severity == severity && !file.isKnown(i))
                    write(output, file.name, file.report.findings[i]);
        for (const auto& [rule, count] : file.report.unlisted)
            output << withoutControlCharacters(file.name + ": " + std::to_string(count) +
                                               " more findings of " + rule)
                   << '\n';
    }

    void end(std::ostream& output, const ReportSummary& summary) const override {
        output << countOf(summary.files(), "file") << ": " << describeCounts(summary);
        if (!summary.failures().empty())
            output << "; " << countOf(summary.failures().size(), "file") << " not readable";
        output << '\n';
    }

private:
    void write(std::ostream& output, const std::string& file, const Finding& finding) const {
        output << word(finding.severity) << '(' << finding.rule->id << "): ";
        const std::string place = describe(finding.place);
        std::string line =
            file + (place.empty() || place[0] == '@' ? "" : "!") + place + ": " + finding.message;
        if (!finding.hint.empty())
            line += "; " + finding.hint;
        output << withoutControlCharacters(line) << '\n';
    }

    std::string word(Severity severity) const {
        switch (severity) {
        case Severity::Error:
            return colored ? "\033[31mERROR\033[0m" : "ERROR";
        case Severity::Warning:
            return colored ? "\033[33mWARNING\033[0m" : "WARNING";
        case Severity::Info:
            break;
        }
        return "INFO";
    }

    const bool colored;
};

} // namespace

std::unique_ptr<ReportFormat> makeTextReport(bool colored) {
    return std::make_unique<TextReport>(colored);
}

} // namespace opc::inspection
