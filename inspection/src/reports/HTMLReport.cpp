#include <opc/inspection/Reports.hpp>

#include "reports/HTMLStyle.hpp"
#include "reports/MarkupText.hpp"
#include "reports/ReportTexts.hpp"

#include <algorithm>
#include <ostream>
#include <tuple>

namespace opc::inspection {

namespace {

std::string badge(Severity severity, const std::string& text) {
    return "<span class=\"badge " + std::string(nameOf(severity)) + "\">" + text + "</span>";
}

/// The counts of one file, or that there is nothing.
std::string badges(const ReportSummary& counts) {
    std::string text;
    for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Info})
        if (const std::uint64_t count = counts.count(severity); count != 0)
            text += " " + badge(severity, countOf(count, nameOf(severity)));
    if (counts.known() != 0)
        text += " <span class=\"badge\">" + std::to_string(counts.known()) + " known</span>";
    return text.empty() ? " <span class=\"badge fine\">nothing found</span>" : text;
}

using FindingsOfRule = std::pair<const Rule*, std::vector<const Finding*>>;

/// The findings that aren't known, by rule: the worst rules first, and otherwise in the order of the checks.
std::vector<FindingsOfRule> groupByRule(const InspectedFile& file) {
    std::vector<FindingsOfRule> groups;
    std::map<const Rule*, std::size_t> places;
    for (std::size_t i = 0; i < file.report.findings.size(); ++i) {
        const Finding& finding = file.report.findings[i];
        if (file.isKnown(i))
            continue;
        const auto [place, isNew] = places.try_emplace(finding.rule, groups.size());
        if (isNew)
            groups.push_back({finding.rule, {}});
        groups[place->second].second.push_back(&finding);
    }
    const auto worst = [](const FindingsOfRule& group) {
        Severity severity = Severity::Info;
        for (const Finding* finding : group.second)
            severity = std::max(severity, finding->severity);
        return severity;
    };
    std::stable_sort(groups.begin(), groups.end(),
                     [&](const auto& left, const auto& right) { return worst(left) > worst(right); });
    return groups;
}

void writeFinding(std::ostream& output, const Finding& finding) {
    output << "<li class=\"" << nameOf(finding.severity) << "\">";
    if (const std::string place = describe(finding.place); !place.empty())
        output << "<code>" << toMarkup(place) << "</code> ";
    output << "<span>" << toMarkup(finding.message);
    if (!finding.hint.empty())
        output << " <em>" << toMarkup(finding.hint) << "</em>";
    output << "</span></li>\n";
}

std::string linkTo(const Rule& rule) {
    const std::string id = toMarkup(rule.id);
    return "<a href=\"#rule-" + id + "\">" + id + "</a>";
}

void writeRuleOfFile(std::ostream& output, const InspectedFile& file, const FindingsOfRule& group) {
    output << "<h3>" << linkTo(*group.first) << ' ' << toMarkup(group.first->title) << "</h3>\n"
           << "<p class=\"statement\">" << toMarkup(group.first->statement) << "</p>\n<ul>\n";
    for (const Finding* finding : group.second)
        writeFinding(output, *finding);
    if (const auto more = file.report.unlisted.find(std::string(group.first->id));
        more != file.report.unlisted.end())
        output << "<li>and " << more->second << " more</li>\n";
    output << "</ul>\n";
}

void writeText(std::ostream& output, std::string_view heading, std::string_view text) {
    if (!text.empty())
        output << "<dt>" << heading << "</dt><dd>" << toMarkup(text) << "</dd>\n";
}

void writeRule(std::ostream& output, const Rule& rule) {
    output << R"(<section class="rule" id="rule-)" << toMarkup(rule.id) << "\">\n<h3>" << toMarkup(rule.id)
           << ' ' << toMarkup(rule.title) << "</h3>\n<dl>\n";
    writeText(output, "Rule", rule.statement);
    writeText(output, "In the standard", rule.standard);
    writeText(output, "Cause", rule.cause);
    writeText(output, "Written by", rule.writers);
    writeText(output, "Readers", rule.readers);
    writeText(output, "What to do", rule.remedy);
    output << "</dl>\n</section>\n";
}

using RuleCount = std::pair<const Rule*, ReportSummary::OfRule>;

/// The rules that were broken, the worst and most frequent first.
std::vector<RuleCount> rank(const ReportSummary& summary) {
    std::vector<RuleCount> ranked;
    for (const Rule* rule : rules())
        if (const auto found = summary.rules().find(rule);
            found != summary.rules().end() && found->second.findings != 0)
            ranked.emplace_back(*found);
    std::stable_sort(ranked.begin(), ranked.end(), [](const RuleCount& left, const RuleCount& right) {
        return std::tie(right.second.severity, right.second.findings) <
               std::tie(left.second.severity, left.second.findings);
    });
    return ranked;
}

void writeTable(std::ostream& output, const std::vector<RuleCount>& ranked) {
    output
        << "<table>\n<thead><tr><th>Severity</th><th>Rule</th><th>What</th><th class=\"number\">Findings</th>"
           "<th class=\"number\">Files</th></tr></thead>\n<tbody>\n";
    for (const auto& [rule, count] : ranked)
        output << "<tr><td>" << badge(count.severity, std::string(nameOf(count.severity))) << "</td><td>"
               << linkTo(*rule) << "</td><td>" << toMarkup(rule->title) << "</td><td class=\"number\">"
               << count.findings << "</td><td class=\"number\">" << count.files << "</td></tr>\n";
    output << "</tbody>\n</table>\n";
}

/// Stands at the end of the document, when all counts are known; the style puts it in front.
void writeSummary(std::ostream& output, const ReportSummary& summary, const std::vector<RuleCount>& ranked) {
    output << "<header>\n<h1>Report on " << countOf(summary.files(), "package") << "</h1>\n<p>"
           << badges(summary) << "</p>\n";
    if (!ranked.empty())
        writeTable(output, ranked);
    if (!summary.failures().empty()) {
        output << "<h2>Not readable</h2>\n<ul>\n";
        for (const auto& [file, reason] : summary.failures())
            output << "<li><code>" << toMarkup(file) << "</code> " << toMarkup(reason) << "</li>\n";
        output << "</ul>\n";
    }
    output << "</header>\n";
}

class HTMLReport : public ReportFormat {
public:
    void begin(std::ostream& output) const override { output << HTML_HEAD; }

    void write(std::ostream& output, const InspectedFile& file) const override {
        if (!file.failure.empty())
            return;
        ReportSummary counts;
        counts.add(file);
        const std::vector<FindingsOfRule> groups = groupByRule(file);
        const bool isOpen = counts.count(Severity::Error) + counts.count(Severity::Warning) != 0;
        output << "<details class=\"file\"" << (isOpen ? " open" : "") << ">\n<summary><h2>"
               << toMarkup(file.name) << "</h2> <span class=\"format\">" << toMarkup(file.report.format)
               << "</span>" << badges(counts) << "</summary>\n";
        for (const FindingsOfRule& group : groups)
            writeRuleOfFile(output, file, group);
        if (!file.picture.empty())
            output << "<details class=\"picture\" open><summary>Parts and relationships</summary>\n<div>"
                   << file.picture << "</div>\n</details>\n";
        output << "</details>\n";
    }

    void end(std::ostream& output, const ReportSummary& summary) const override {
        const std::vector<RuleCount> ranked = rank(summary);
        if (!ranked.empty())
            output << "<section class=\"rules\">\n<h2>The rules</h2>\n";
        for (const auto& entry : ranked)
            writeRule(output, *entry.first);
        if (!ranked.empty())
            output << "</section>\n";
        writeSummary(output, summary, ranked);
        output << "</body>\n</html>\n";
    }
};

} // namespace

std::unique_ptr<ReportFormat> makeHTMLReport() {
    return std::make_unique<HTMLReport>();
}

} // namespace opc::inspection
