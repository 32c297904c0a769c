#include <opc/editing/Mending.hpp>

#include "archive/TemporaryArchive.hpp"
#include "mending/Menders.hpp"

#include "zip/src/Failure.hpp"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>

namespace opc::editing {

using namespace mending;
using inspection::Archive;
using inspection::InspectionOptions;
using inspection::Report;
using inspection::Severity;
using Stage = Mender::Stage;

namespace {

/// A package that one pass doesn't mend has faults behind faults. There are no more layers than these.
constexpr int MOST_ROUNDS = 10;

/// What no new archive has.
constexpr std::string_view OF_THE_ARCHIVE[] = {"M3.16", "M3.17", "SEC-46", "SEC-48", "SEC-50"};

Archive carryOut(const ArchivePlan& plan, const physical::ZipOptions& options) {
    const auto require = [](int error) {
        if (error != 0)
            physical::zip::failSystem("temporary archive", "can't write", error);
    };
    return archive::makeTemporaryArchive(options, [&](physical::zip::ByteTarget& target) {
        physical::zip::BufferedTarget out(target);
        write(plan, [&](const unsigned char* bytes, std::size_t count) { require(out.write(bytes, count)); });
        require(out.flush());
    });
}

class Mends {
public:
    Mends(Archive& archive, const InspectionOptions& asked) : archive(archive), options(asked) {
        options.mostFindingsOfARule = std::numeric_limits<std::size_t>::max();
    }

    /// @return whether there is a new archive, which may need another round
    bool runRound();

    std::vector<Mended> mended;
    std::vector<Finding> left;

private:
    /// @return whether anything was mended
    bool mendAll(Round& round, Report& report, Stage stage);
    void mendArchive(Round& round);
    bool mayBeWritten(const Round& round, Report& report) const;
    bool counts(const Finding& finding) const {
        return finding.severity != Severity::Info || !options.only.empty();
    }

    Archive& archive;
    InspectionOptions options;
    std::vector<Mended> ofRound;
};

bool Mends::mendAll(Round& round, Report& report, Stage stage) {
    const std::size_t before = ofRound.size();
    for (Finding& finding : report.findings) {
        const Mender* const mender = findMender(finding.rule->id);
        if (mender == nullptr || mender->stage != stage || !counts(finding) || round.isDropped(finding))
            continue;
        Outcome outcome = mender->mend(round, finding);
        if (outcome.isMended)
            ofRound.push_back(
                {finding.rule, finding.place, std::move(outcome.text), std::move(outcome.changes)});
        else
            finding.hint = std::move(outcome.text);
    }
    return ofRound.size() > before;
}

/// Tells what the new archive loses beside what was asked for.
void Mends::mendArchive(Round& round) {
    const auto isHidden = [](const ArchiveItem& item) { return !item.central; };
    if (archive.gaps().empty() && archive.faults().empty() &&
        std::none_of(archive.items().begin(), archive.items().end(), isHidden))
        return;
    InspectionOptions others = options;
    others.only.clear();
    for (const std::string_view rule : OF_THE_ARCHIVE)
        if (std::none_of(ofRound.begin(), ofRound.end(),
                         [rule](const Mended& one) { return one.rule->id == rule; }))
            others.only.emplace_back(rule);
    others.never.clear();
    Report report = inspect(archive, others);
    mendAll(round, report, Stage::Whole);
}

/// @return whether all of the old archive is known
bool Mends::mayBeWritten(const Round& round, Report& report) const {
    const ArchiveItem* const lost = round.plan.findLost();
    const bool isLimited =
        std::any_of(archive.faults().begin(), archive.faults().end(),
                    [](const inspection::ArchiveFault& fault) { return fault.rule == "SEC-54"; });
    if (lost == nullptr && !isLimited)
        return true;
    for (Finding& finding : report.findings)
        finding.hint =
            lost != nullptr
                ? "The archive can't be written anew: the content of " + lost->name + " isn't found"
                : "The archive can't be written anew: a limit keeps part of it from being read";
    return false;
}

bool Mends::runRound() {
    ofRound.clear();
    Report report = inspect(archive, options);
    std::optional<Archive> next;
    {
        const Subject subject(archive, options.limits);
        Round round(archive, subject, options.fileName);
        for (const Stage stage : {Stage::Whole, Stage::Entries, Stage::Within})
            if (mendAll(round, report, stage))
                break;
        round.finish();
        if (round.plan.isDue)
            mendArchive(round);
        if (round.plan.isDue && !round.plan.isEmpty() && mayBeWritten(round, report))
            next = carryOut(round.plan, options.limits);
    }
    left = std::move(report.findings);
    if (!next)
        return false;
    mended.insert(mended.end(), std::make_move_iterator(ofRound.begin()),
                  std::make_move_iterator(ofRound.end()));
    archive = std::move(*next);
    return true;
}

} // namespace

Mending mend(Archive archive, const InspectionOptions& options) {
    Signatures signatures(archive);
    const physical::FileState original = archive.fileState();
    Mending result{std::move(archive), original, {}, {}, std::move(signatures)};
    Mends mends(result.archive, options);
    int rounds = 0;
    while (mends.runRound())
        if (++rounds == MOST_ROUNDS) {
            mends.left = inspect(result.archive, options).findings;
            break;
        }
    result.mended = std::move(mends.mended);
    result.left = std::move(mends.left);
    return result;
}

std::vector<Change> Mending::changes() const {
    std::vector<Change> all;
    for (const Mended& one : mended) {
        const std::string what = (one.place.item.empty() ? "" : one.place.item + ": ") + one.what;
        if (one.changes.empty()) { // of the archive
            all.push_back({Change::Kind::Mended, "/", {}, {}, {}});
            all.back().before.text = std::string(one.rule->id) + ' ' + what;
        }
        all.insert(all.end(), one.changes.begin(), one.changes.end());
        if (all.back().kind == Change::Kind::Mended && all.back().before.text.empty())
            all.back().before.text = what;
    }
    return all;
}

std::string_view mendsOf(std::string_view rule) {
    const Mender* const mender = findMender(rule);
    return mender == nullptr ? std::string_view() : mender->does;
}

} // namespace opc::editing
