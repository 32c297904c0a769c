#include "ArchiveFile.hpp"
#include "Commands.hpp"
#include "DiffJob.hpp"
#include "DiffOutput.hpp"
#include "Files.hpp"

#include <CLI/CLI.hpp>

#include <memory>
#include <vector>

namespace opctool {

namespace {

using namespace opc::inspection;

struct DiffArguments {
    std::string other;
    std::vector<std::string> parts;
    bool overview = false;
    bool namesOnly = false;
    std::size_t context = 3;
    DiffJobArguments job;
};

void diff(FileRun& run, const DiffArguments& arguments) {
    const Archive before = openArchive(run);
    const Archive now = openArchive(arguments.other, run.options().reading);
    if (!arguments.job.path.empty()) {
        if (writeDiffJob(run, before, now, arguments.other, arguments.parts, arguments.job))
            run.sayNo();
        return;
    }
    const Comparison comparison = compare(before, now, {arguments.parts});
    using Extent = DiffStyle::Extent;
    const Extent extent = arguments.namesOnly  ? Extent::Names
                          : arguments.overview ? Extent::Overview
                                               : Extent::Lines;
    if (run.wantsJSON())
        printDiffJSON(run, comparison, arguments.other, arguments.context);
    else
        printDiff(run, comparison,
                  {extent, arguments.context, run.path(), arguments.other, run.options().output.colored});
    if (!comparison.isEmpty())
        run.sayNo();
}

void declareDiff(CLI::App& command) {
    const auto arguments = std::make_shared<DiffArguments>();
    const auto files = addFile(command, DIFF);
    addJSONOptions(command, files->options.output);
    command.add_option("OTHER", arguments->other, "The package to compare it with; - is standard input")
        ->required()
        ->type_name("");
    command
        .add_option("PART", arguments->parts,
                    "Compare only parts, sources and items with these names; * stands for anything within a "
                    "segment, ** for anything")
        ->type_name("");
    CLI::Option* const overview =
        command.add_flag("--stat", arguments->overview, "Print no lines of parts, and how much differs");
    CLI::Option* const names =
        command.add_flag("--name-only", arguments->namesOnly, "Print only the names of what differs")
            ->excludes(overview);
    command.add_option("-U,--unified", arguments->context, "Print this many lines around those that differ")
        ->type_name("N")
        ->capture_default_str();
    CLI::Option* const job =
        command
            .add_option("--job", arguments->job.path,
                        "Print no differences, but write a job for apply that makes PACKAGE hold what OTHER "
                        "does; - is standard output")
            ->excludes(overview, names)
            ->type_name("FILE");
    addDryRun(command, files->options)->needs(job)->description("Write no job; print what it would change");
    command
        .add_flag("--no-check", arguments->job.noCheck, "Write the job also if apply needs --no-check for it")
        ->needs(job);
    command
        .add_flag("--break-signatures", arguments->job.breakSignatures,
                  "Write the job also if apply needs --break-signatures for it")
        ->needs(job);
    command.callback([files, arguments] {
        if (arguments->other == "-" && files->selection.packages.front() == "-")
            throw CLI::ValidationError("OTHER", "can't be standard input, which is the first package");
        if (!arguments->job.path.empty() && files->options.output.format() != OutputOptions::Format::Text)
            throw CLI::ValidationError("--job", "doesn't fit with JSON");
        files->run([arguments](FileRun& run) { diff(run, *arguments); });
    });
}

} // namespace

const Command DIFF{
    "diff",
    "Show what differs between two packages",
    declareDiff,
    "Parts are equal only if all their bytes are. How the archive is written doesn't count: order, "
    "compression, times, and the form of relationships and content types. A part that is XML is "
    "compared with one element a line; the order of elements counts, while the order of attributes, "
    "prefixes, and white space between elements don't. The packages may break the standard. "
    "A job is only written if apply makes PACKAGE hold what OTHER does with it: it was tried. "
    "Contents of more than 16 KiB that a job needs go to a folder beside it, FILE.contents.",
    "opctool diff old.docx new.docx\n"
    "opctool diff old.docx new.docx --stat\n"
    "opctool diff old.docx new.docx '/word/**' --name-only",
    "0 if nothing differs, 1 if something does",
    DIFF_SCHEMA};

} // namespace opctool
