#include <opc/inspection/Reports.hpp>

#include "reports/JSONWriter.hpp"
#include "reports/ReportTexts.hpp"

#include <ostream>

namespace opc::inspection {

namespace {

void write(JSONWriter& json, const Finding& finding, const std::string& fingerprint, bool isKnown) {
    json.beginObject();
    json.name("rule").text(finding.rule->id);
    json.name("severity").text(nameOf(finding.severity));
    json.name("standard").textOrNull(finding.rule->standard);
    json.name("part").textOrNull(finding.place.part);
    json.name("item").textOrNull(finding.place.item);
    json.name("relationship").textOrNull(finding.place.relationship);
    json.name("target").textOrNull(finding.place.target);
    json.name("line").numberOrNull(finding.place.line);
    json.name("column").numberOrNull(finding.place.column);
    json.name("offset");
    finding.place.offset ? json.number(*finding.place.offset) : json.null();
    json.name("message").text(finding.message);
    json.name("hint").textOrNull(finding.hint);
    json.name("fingerprint").text(fingerprint);
    json.name("known").boolean(isKnown);
    json.endObject();
}

void writeMembers(JSONWriter& json, const InspectedFile& file) {
    const std::vector<std::string> prints = fingerprints(file.report);
    json.name("format").textOrNull(file.report.format);
    json.name("findings").beginArray();
    for (std::size_t i = 0; i < file.report.findings.size(); ++i)
        write(json, file.report.findings[i], prints[i], file.isKnown(i));
    json.endArray();
    json.name("unlisted").beginObject();
    for (const auto& [rule, count] : file.report.unlisted)
        json.name(rule).number(count);
    json.endObject();
}

class JSONLines : public ReportFormat {
public:
    void write(std::ostream& output, const InspectedFile& file) const override {
        JSONWriter json(output);
        json.beginObject();
        json.name("file").text(file.name);
        json.name("failure").textOrNull(file.failure);
        writeMembers(json, file);
        json.endObject();
        output << '\n';
    }
};

class JSONArray : public JSONLines {
public:
    void begin(std::ostream& output) const override { output << '['; }
    std::string separator() const override { return ","; }
    void end(std::ostream& output, const ReportSummary&) const override { output << "]\n"; }
};

} // namespace

void writeJSON(std::ostream& output, const InspectedFile& file) {
    JSONWriter json(output);
    json.beginObject();
    writeMembers(json, file);
    json.endObject();
}

std::unique_ptr<ReportFormat> makeJSONReport() {
    return std::make_unique<JSONArray>();
}

std::unique_ptr<ReportFormat> makeJSONLinesReport() {
    return std::make_unique<JSONLines>();
}

} // namespace opc::inspection
