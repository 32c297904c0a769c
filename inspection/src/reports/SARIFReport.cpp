#include <opc/inspection/Reports.hpp>

#include "reports/JSONWriter.hpp"
#include "reports/ReportTexts.hpp"

#include <ostream>

namespace opc::inspection {

namespace {

constexpr std::string_view SCHEMA = "https://json.schemastore.org/sarif-2.1.0.json";

std::string_view levelOf(Severity severity) {
    return severity == Severity::Info ? "note" : nameOf(severity);
}

void writeText(JSONWriter& json, std::string_view member, std::string_view text) {
    json.name(member).beginObject();
    json.name("text").text(text);
    json.endObject();
}

std::string messageOf(const Finding& finding) {
    const std::string place = describe(finding.place);
    std::string text = (place.empty() ? "" : place + ": ") + finding.message + ".";
    if (!finding.hint.empty())
        text += " " + finding.hint + ".";
    return text;
}

std::string helpOf(const Rule& rule) {
    std::string text(rule.statement);
    for (const std::string_view more : {rule.cause, rule.writers, rule.readers, rule.remedy})
        if (!more.empty())
            text.append(" ").append(more);
    return text;
}

void write(JSONWriter& json, const Rule& rule) {
    json.beginObject();
    json.name("id").text(rule.id);
    writeText(json, "shortDescription", rule.title);
    writeText(json, "fullDescription", rule.statement);
    writeText(json, "help", helpOf(rule));
    json.name("defaultConfiguration").beginObject();
    json.name("level").text(levelOf(rule.severity));
    json.endObject();
    json.name("properties").beginObject();
    json.name("standard").text(rule.standard);
    json.endObject();
    json.endObject();
}

/// Code hosts want a line of each place, though a package has none.
void writePhysicalLocation(JSONWriter& json, const std::string& uri, bool isInRoot) {
    json.name("physicalLocation").beginObject();
    json.name("artifactLocation").beginObject();
    json.name("uri").text(uri);
    if (isInRoot)
        json.name("uriBaseId").text("%SRCROOT%");
    json.endObject();
    json.name("region").beginObject();
    json.name("startLine").number(1);
    json.endObject();
    json.endObject();
}

void writeLogicalLocation(JSONWriter& json, const Place& place) {
    const std::string& path = place.part.empty() ? place.item : place.part;
    if (path.empty())
        return;
    json.name("logicalLocations").beginArray();
    json.beginObject();
    json.name("name").text(path.substr(path.rfind('/') + 1));
    json.name("fullyQualifiedName").text(place.relationship.empty() ? path : path + "#" + place.relationship);
    json.name("kind").text("resource");
    json.endObject();
    json.endArray();
}

void writeProperties(JSONWriter& json, const Place& place) {
    json.name("properties").beginObject();
    if (!place.relationship.empty())
        json.name("relationship").text(place.relationship);
    if (!place.target.empty())
        json.name("target").text(place.target);
    if (place.line != 0) {
        json.name("line").number(place.line);
        json.name("column").number(place.column);
    }
    if (place.offset)
        json.name("offset").number(*place.offset);
    json.endObject();
}

class SARIFReport : public ReportFormat {
public:
    explicit SARIFReport(SARIFOptions options) : options(std::move(options)) {}

    void begin(std::ostream& output) const override {
        output << R"({"$schema":")" << SCHEMA
               << R"(","version":"2.1.0","runs":[{"columnKind":"unicodeCodePoints","results":[)";
    }

    void write(std::ostream& output, const InspectedFile& file) const override {
        const std::vector<std::string> prints = fingerprints(file.report);
        for (std::size_t i = 0; i < file.report.findings.size(); ++i) {
            output << (i == 0 ? "" : separator());
            writeResult(output, file, i, prints[i]);
        }
    }

    std::string separator() const override { return ",\n"; }

    void end(std::ostream& output, const ReportSummary& summary) const override;

private:
    std::string uriOf(const std::string& file) const { return toSARIFURI(file, options.root); }
    bool isInRoot(const std::string& uri) const {
        return !options.root.empty() && uri.compare(0, 5, "file:") != 0;
    }

    void writeResult(std::ostream& output, const InspectedFile& file, std::size_t index,
                     const std::string& fingerprint) const;
    void writeFailure(JSONWriter& json, const std::string& file, const std::string& reason) const;

    const SARIFOptions options;
};

void SARIFReport::writeResult(std::ostream& output, const InspectedFile& file, std::size_t index,
                              const std::string& fingerprint) const {
    const Finding& finding = file.report.findings[index];
    const std::string uri = uriOf(file.name);
    JSONWriter json(output);
    json.beginObject();
    json.name("ruleId").text(finding.rule->id);
    json.name("level").text(levelOf(finding.severity));
    writeText(json, "message", messageOf(finding));
    json.name("locations").beginArray();
    json.beginObject();
    writePhysicalLocation(json, uri, isInRoot(uri));
    writeLogicalLocation(json, finding.place);
    json.endObject();
    json.endArray();
    json.name("partialFingerprints").beginObject();
    json.name("opcRule/v1").text(fingerprint);
    json.endObject();
    if (!file.known.empty())
        json.name("baselineState").text(file.isKnown(index) ? "unchanged" : "new");
    writeProperties(json, finding.place);
    json.endObject();
}

void SARIFReport::writeFailure(JSONWriter& json, const std::string& file, const std::string& reason) const {
    const std::string uri = uriOf(file);
    json.beginObject();
    json.name("level").text("error");
    writeText(json, "message", file + ": " + reason);
    json.name("locations").beginArray();
    json.beginObject();
    writePhysicalLocation(json, uri, isInRoot(uri));
    json.endObject();
    json.endArray();
    json.endObject();
}

void SARIFReport::end(std::ostream& output, const ReportSummary& summary) const {
    JSONWriter json(output);
    output << "],\n\"tool\":";
    json.beginObject();
    json.name("driver").beginObject();
    json.name("name").text(options.toolName);
    json.name("version").text(options.toolVersion);
    json.name("rules").beginArray();
    for (const Rule* rule : rules())
        if (summary.rules().count(rule) != 0)
            inspection::write(json, *rule);
    json.endArray();
    json.endObject();
    json.endObject();
    output << ",\n\"invocations\":";
    JSONWriter invocations(output);
    invocations.beginArray();
    invocations.beginObject();
    invocations.name("executionSuccessful").boolean(summary.failures().empty());
    invocations.name("toolExecutionNotifications").beginArray();
    for (const auto& [file, reason] : summary.failures())
        writeFailure(invocations, file, reason);
    invocations.endArray();
    invocations.endObject();
    invocations.endArray();
    output << "}]}\n";
}

} // namespace

std::unique_ptr<ReportFormat> makeSARIFReport(SARIFOptions options) {
    return std::make_unique<SARIFReport>(std::move(options));
}

} // namespace opc::inspection
