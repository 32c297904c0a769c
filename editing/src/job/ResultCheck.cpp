#include <opc/editing/ResultCheck.hpp>

#include "job/StepNames.hpp"

#include <opc/core/Text.hpp>
#include <opc/inspection/ArchiveSource.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PartName.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <algorithm>
#include <map>
#include <utility>

namespace opc::editing {

using inspection::Baseline;
using inspection::Finding;
using inspection::Report;

namespace {

std::string relationshipsOf(const std::string& source) {
    return toUDEString(model::PartName(toString(source, true)).getRelationshipPartName());
}

/// Where the places of a package are after changes.
class Moves {
public:
    explicit Moves(const std::vector<Change>& changes) {
        for (const Change& change : changes) {
            if (change.kind == Change::Kind::PartRenamed) {
                rename(change.before.text, change.after.text);
                rename(relationshipsOf(change.before.text), relationshipsOf(change.after.text));
            } else if (change.kind == Change::Kind::RelationshipChanged) {
                targets[{relationshipsOf(change.place), change.name}] = change.after.text;
            }
        }
    }

    void follow(inspection::Place& place) const {
        if (const auto name = names.find(place.part); name != names.end())
            place.part = name->second;
        if (const auto target = targets.find({place.part, place.relationship}); target != targets.end())
            place.target = target->second;
    }

private:
    void rename(const std::string& old, const std::string& now) {
        const auto first = firstNames.find(old);
        const std::string origin = first == firstNames.end() ? old : first->second;
        names[origin] = now;
        firstNames[now] = origin;
    }

    std::map<std::string, std::string> names;                           ///< by the name before all changes
    std::map<std::string, std::string> firstNames;                      ///< the other way round
    std::map<std::pair<std::string, std::string>, std::string> targets; ///< by relationships part and Id
};

std::string textOf(const Finding& finding) {
    const inspection::Place& place = finding.place;
    const std::string& name = place.part.empty() ? place.item : place.part;
    return std::string(finding.rule->id) + (name.empty() ? "" : " in " + name) +
           (place.relationship.empty() ? "" : "#" + place.relationship) + ": " + finding.message;
}

} // namespace

InvalidResult::~InvalidResult() = default;

std::vector<Finding> findNewErrors(const Report& before, const Report& after,
                                   const std::vector<Change>& changes,
                                   const std::vector<std::string>& broken) {
    const Moves moves(changes);
    Report old = before;
    for (Finding& finding : old.findings)
        moves.follow(finding.place);
    Baseline known;
    for (const std::string& fingerprint : fingerprints(old))
        known.add({}, fingerprint);
    return findNewErrors(known, after, broken);
}

std::vector<Finding> findNewErrors(const Baseline& known, const Report& after,
                                   const std::vector<std::string>& broken) {
    const std::vector<bool> isKnown = known.findKnown({}, after);
    std::vector<Finding> errors;
    for (std::size_t i = 0; i < after.findings.size(); ++i) {
        const Finding& finding = after.findings[i];
        const bool mayBreak = std::find(broken.begin(), broken.end(), finding.place.part) != broken.end();
        if (finding.severity == inspection::Severity::Error && !isKnown[i] && !mayBreak)
            errors.push_back(finding);
    }
    return errors;
}

void refuseNewErrors(const std::vector<Finding>& errors) {
    if (errors.empty())
        return;
    InvalidResult failure("The changed package would have an error that it hasn't had: " +
                          textOf(errors.front()));
    if (errors.size() > 1)
        failure.addDetails("and " + std::to_string(errors.size() - 1) + " more");
    throw failure;
}

void requireOpens(const inspection::Archive& result, const physical::ZipOptions& limits) {
    inspection::ArchiveSource source(result);
    physical::ZipOptions options = limits;
    options.lenient = true;
    physical::ZipPackage archive(source, options);
    physical::LenientPackage lenient(archive);
    model::Package package(lenient);
    package.open(interfaces::OpenMode::ReadOnly);
    package.close(true);
}

void checkResult(const inspection::Archive& result, const Job& job,
                 const inspection::InspectionOptions& options) {
    for (std::size_t i = 0; i < job.steps.size(); ++i) {
        const auto* const check = std::get_if<CheckStep>(&job.steps[i]);
        if (check == nullptr)
            continue;
        inspection::InspectionOptions wanted = options;
        wanted.profiles = check->profiles;
        const Report report = inspection::inspect(result, wanted);
        const auto found =
            std::find_if(report.findings.begin(), report.findings.end(),
                         [check](const Finding& finding) { return finding.severity >= check->failOn; });
        if (found != report.findings.end())
            throw InvalidResult(placeOf(i + 1, nameOf(job.steps[i])) + ": " + textOf(*found));
    }
}

} // namespace opc::editing
