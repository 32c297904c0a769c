#include "reports/ReportTexts.hpp"

namespace opc::inspection {

std::string_view nameOf(Severity severity) {
    switch (severity) {
    case Severity::Error:
        return "error";
    case Severity::Warning:
        return "warning";
    case Severity::Info:
        break;
    }
    return "info";
}

std::string describe(const Place& place) {
    std::string text = place.part.empty() ? place.item : place.part;
    if (place.line != 0)
        text += "(" + std::to_string(place.line) + "," + std::to_string(place.column) + ")";
    else if (place.offset)
        text += "@" + std::to_string(*place.offset);
    if (!place.relationship.empty())
        text += "#" + place.relationship;
    return text;
}

std::string countOf(std::uint64_t count, std::string_view noun) {
    return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string describeCounts(const ReportSummary& summary) {
    std::string text = countOf(summary.count(Severity::Error), "error") + ", " +
                       countOf(summary.count(Severity::Warning), "warning") + ", " +
                       countOf(summary.count(Severity::Info), "info");
    if (summary.known() != 0)
        text += "; " + std::to_string(summary.known()) + " known";
    return text;
}

} // namespace opc::inspection
