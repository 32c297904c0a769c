#include "CoverageText.hpp"

#include "JSONOutput.hpp"
#include "TerminalText.hpp"

#include <opc/core/Text.hpp>

#include <nlohmann/json.hpp>

namespace opctool {

namespace {

using opc::toUDEString;
using opc::model::ChangedContentType;
using opc::model::PackageCoverage;

std::string clean(const std::u16string& text) {
    return withoutControlCharacters(toUDEString(text));
}

std::string describe(const ChangedContentType& changed) {
    return clean(changed.part.toString()) + ": " + clean(changed.now) + ", signed as " +
           (changed.whenSigned.empty() ? "none" : clean(changed.whenSigned));
}

} // namespace

std::string summarize(const PackageCoverage& coverage) {
    std::string text = "Not covered: " + std::to_string(coverage.getUncoveredParts().size()) + " of " +
                       std::to_string(coverage.countParts()) + " parts, " +
                       std::to_string(coverage.getUncoveredRelationships().size()) + " of " +
                       std::to_string(coverage.countRelationships()) + " relationships\n";
    if (coverage.getKeywordsSize() != 0)
        text += "Not covered: " + std::to_string(coverage.getKeywordsSize()) + " bytes from byte " +
                std::to_string(coverage.getKeywordsBegin()) + " of the core properties, their keywords\n";
    for (const ChangedContentType& changed : coverage.getChangedContentTypes())
        text += "Changed content type: " + describe(changed) + '\n';
    for (const auto& item : coverage.getIgnoredItems())
        text += "Ignored, but not by other programs: " + clean(item.name) + ": " +
                withoutControlCharacters(item.reason) + '\n';
    return text;
}

void printCoverage(JSONOutput& output, const PackageCoverage& coverage) {
    output.beginArray("uncoveredParts");
    for (const auto& name : coverage.getUncoveredParts())
        output.add(toUDEString(name.toString()));
    output.end();
    output.beginArray("uncoveredRelationships");
    for (const auto& relationship : coverage.getUncoveredRelationships())
        output.add({{"source", toUDEString(relationship.getSourceURI().toString())},
                    {"id", toUDEString(relationship.getID())}});
    output.end();
    output.beginArray("changedContentTypes");
    for (const ChangedContentType& change : coverage.getChangedContentTypes())
        output.add({{"part", toUDEString(change.part.toString())},
                    {"contentType", toUDEString(change.now)},
                    {"signedAs", toUDEString(change.whenSigned)}});
    output.end();
    output.beginArray("ignored");
    for (const auto& item : coverage.getIgnoredItems())
        output.add({{"name", toUDEString(item.name)}, {"reason", item.reason}});
    output.end();
    output.add({{"begin", coverage.getKeywordsBegin()}, {"size", coverage.getKeywordsSize()}}, "keywords");
    output.add(coverage.isFull(), "full");
}

} // namespace opctool
