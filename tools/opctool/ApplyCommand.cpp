#include "ArchiveFile.hpp"
#include "ChangeText.hpp"
#include "Commands.hpp"
#include "EditedPackage.hpp"
#include "Files.hpp"
#include "MendingText.hpp"
#include "SignatureOption.hpp"

#include <opc/core/Exception.hpp>
#include <opc/editing/Job.hpp>
#include <opc/editing/ResultCheck.hpp>

#include <CLI/CLI.hpp>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>

namespace opctool {

namespace {

using opc::editing::Job;
using opc::inspection::Archive;
using opc::inspection::InspectionOptions;
using opc::inspection::Report;

struct ApplyArguments {
    std::string job;
    bool noCheck = false;
    bool allowOutside = false;
};

std::string readAll(std::istream& stream) {
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string readText(const std::string& path) {
    if (path == "-")
        return readAll(std::cin);
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    std::string text = readAll(file);
    if (!file)
        throw opc::Exception(path + " can't be read",
                             {errno != 0 ? errno : EIO, boost::system::generic_category()});
    return text;
}

bool asksForNewErrors(const FileRun& run, const ApplyArguments& arguments) {
    return !arguments.noCheck && !run.options().dryRun;
}

/// Makes the steps that don't mend.
/// @param before  what the package has had before all steps
void apply(FileRun& run, const ApplyArguments& arguments, const Job& job, EditedPackage& package,
           const Report& before) {
    const std::filesystem::path folder = std::filesystem::path(arguments.job).parent_path();
    const auto& editor = package.editor();
    package.checkBeforeReplacing([&](const std::filesystem::path& written) {
        const InspectionOptions options = optionsForNewErrors(run);
        const Archive result(written, options.limits);
        if (!arguments.noCheck)
            opc::editing::refuseNewErrors(
                findNewErrors(before, inspect(result, options), editor.changes(), editor.brokenSignatures()));
        checkResult(result, job, options);
    });
    applyJob(package.editor(), job, {folder.empty() ? "." : folder, arguments.allowOutside});
    package.finish({}, true);
}

void tellWhatIsLeft(FileRun& run, const opc::editing::Mending& mending) {
    for (const opc::inspection::Finding& finding : mending.left)
        if (finding.severity != opc::inspection::Severity::Info) {
            run.tell("left: " + describeLeft(finding));
            run.sayNo();
        }
}

/// Mends, and goes on with the package that this makes.
void mendAndApply(FileRun& run, const ApplyArguments& arguments, const Job& job) {
    Archive archive = openToInspect(run);
    Report before;
    if (asksForNewErrors(run, arguments))
        before = inspect(archive, optionsForNewErrors(run));
    InspectionOptions options;
    options.limits = run.options().reading.zip;
    options.fileName = run.path();
    const opc::editing::Mending mending = mendBefore(std::move(archive), job, options);
    EditedPackage package(run, mending);
    apply(run, arguments, job, package, before);
    tellWhatIsLeft(run, mending);
}

void apply(FileRun& run, const ApplyArguments& arguments) {
    const Job job = opc::editing::readJob(readText(arguments.job));
    if (opc::editing::mends(job))
        return mendAndApply(run, arguments, job);
    EditedPackage package(run);
    Report before;
    if (asksForNewErrors(run, arguments))
        before = inspect(package.openArchive(), optionsForNewErrors(run));
    apply(run, arguments, job, package, before);
}

void declareApply(CLI::App& command) {
    const auto arguments = std::make_shared<ApplyArguments>();
    const auto files = addChangedFile(command, APPLY);
    command.add_option("JOB", arguments->job, "The file with the job; - is standard input")
        ->required()
        ->type_name("");
    command.add_flag("--no-check", arguments->noCheck,
                     "Write the package also if it has errors that it hasn't had");
    command.add_flag("--allow-outside", arguments->allowOutside,
                     "Let the job name files outside its own folder");
    addSignatureOption(command, files->options);
    command.callback([files, arguments] {
        if (files->selection.packages.front() == "-" && arguments->job == "-")
            throw CLI::ValidationError("JOB", "can't be standard input, which is the package");
        files->run([&arguments](FileRun& run) { apply(run, *arguments); });
    });
}

} // namespace

const Command APPLY{
    "apply",
    "Make all changes of a job, or none",
    declareApply,
    "A job is JSON: a list of steps, each with what one of the commands add, put, rm, mv, retype, relate, "
    "unrelate, "
    "retarget, gc, props, clean, fix and check takes. The schema command prints its schema with --job. "
    "Contents "
    "stand in "
    "the "
    "job, or in files "
    "in its folder. The package is checked before it replaces the old one: a new error refuses it.",
    "opctool apply report.docx job.json\n"
    "opctool apply report.docx job.json --dry-run",
    "",
    CHANGES_SCHEMA};

} // namespace opctool
