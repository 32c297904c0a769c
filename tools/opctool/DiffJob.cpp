#include "DiffJob.hpp"

#include "ArchiveFile.hpp"
#include "FileRun.hpp"
#include "NewFile.hpp"
#include "SignatureOption.hpp"

#include <opc/core/Exception.hpp>
#include <opc/editing/DifferenceJob.hpp>
#include <opc/editing/ResultCheck.hpp>
#include <opc/editing/Signatures.hpp>

#include <algorithm>
#include <cerrno>
#include <filesystem>

namespace opctool {

namespace {

namespace fs = std::filesystem;

using opc::editing::DifferenceJob;
using opc::inspection::Archive;

/// Writes a file that isn't there yet.
void writeNew(const std::string& path, const std::string& text) {
    try {
        NewFile file(path, NewFile::Readers::All, false);
        file.write({text.begin(), text.end()});
        file.keep();
    } catch (const opc::Exception& e) {
        if (e.code().value() == EEXIST)
            throw opc::Exception(path + " exists already");
        throw;
    }
}

void refuseIncomplete(const std::vector<std::string>& left, const std::string& other) {
    constexpr std::size_t TOLD = 10;
    if (left.empty())
        return;
    opc::Exception failure("No job makes it hold what " + other + " does: " + left.front());
    for (std::size_t i = 1; i < std::min(left.size(), TOLD); ++i)
        failure.addDetails(left[i]);
    if (left.size() > TOLD)
        failure.addDetails("and " + std::to_string(left.size() - TOLD) + " more");
    throw failure;
}

/// What `apply` would refuse without these options is refused at once.
void refuseAsApply(const FileRun& run, const Archive& before, const DifferenceJob& made,
                   const DiffJobArguments& arguments) {
    if (!arguments.breakSignatures)
        refuseToBreak(made.brokenSignatures);
    if (arguments.noCheck)
        return;
    const opc::inspection::InspectionOptions options = optionsForNewErrors(run);
    opc::editing::refuseNewErrors(findNewErrors(inspect(before, options), inspect(made.result, options),
                                                made.changes, made.brokenSignatures));
}

} // namespace

bool writeDiffJob(FileRun& run, const Archive& before, const Archive& now, const std::string& other,
                  const std::vector<std::string>& names, const DiffJobArguments& arguments) {
    const std::string& path = arguments.path;
    const bool writesFiles = path != "-" && !run.options().dryRun;
    opc::editing::JobContents contents(writesFiles ? fs::path(path + ".contents") : fs::path());
    opc::physical::ZipOptions limits = run.options().reading.zip;
    limits.lenient = !run.options().reading.strict; // as the two packages were opened
    const DifferenceJob made = makeJob(before, now, contents, {names, limits});
    refuseIncomplete(made.left, other);
    refuseAsApply(run, before, made, arguments);
    if (writesFiles)
        writeNew(path, writeJob(made.job));
    else if (!run.options().dryRun)
        run.out() << writeJob(made.job);
    else
        for (const opc::editing::Change& change : made.changes)
            run.printLine(describe(change));
    contents.stay();
    return !made.job.steps.empty();
}

} // namespace opctool
