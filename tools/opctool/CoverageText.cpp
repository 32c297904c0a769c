#include "CoverageText.hpp"

#include "TerminalText.hpp"

#include <opc/core/Text.hpp>

#include <nlohmann/json.hpp>

namespace opctool {

namespace {

using nlohmann::ordered_json;
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

ordered_json toJSON(const PackageCoverage& coverage) {
    ordered_json parts = ordered_json::array();
    for (const auto& name : coverage.getUncoveredParts())
        parts.push_back(toUDEString(name.toString()));
    ordered_json relationships = ordered_json::array();
    for (const auto& relationship : coverage.getUncoveredRelationships())
        relationships.push_back({{"source", toUDEString(relationship.getSourceURI().toString())},
                                 {"id", toUDEString(relationship.getID())}});
    ordered_json changed = ordered_json::array();
    for (const ChangedContentType& change : coverage.getChangedContentTypes())
        changed.push_back({{"part", toUDEString(change.part.toString())},
                           {"contentType", toUDEString(change.now)},
                           {"signedAs", toUDEString(change.whenSigned)}});
    ordered_json ignored = ordered_json::array();
    for (const auto& item : coverage.getIgnoredItems())
        ignored.push_back({{"name", toUDEString(item.name)}, {"reason", item.reason}});
    return {{"uncoveredParts", parts},
            {"uncoveredRelationships", relationships},
            {"changedContentTypes", changed},
            {"ignored", ignored},
            {"keywords", {{"begin", coverage.getKeywordsBegin()}, {"size", coverage.getKeywordsSize()}}},
            {"full", coverage.isFull()}};
}

} // namespace opctool
