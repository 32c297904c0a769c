#include "Files.hpp"

#include "Command.hpp"
#include "Messages.hpp"
#include "Progress.hpp"
#include "SourceDate.hpp"

#include <opc/core/Exception.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace opctool {

namespace {

/// How many files may have been begun whose output isn't printed yet: one slow file shall not stop the others.
constexpr std::size_t WINDOW = 256;

/// Runs an action over files, on several threads.
class Work {
public:
    Work(const Files& files, const Files::Action& action, OrderedOutput& output, Progress& progress)
        : files(files), action(action), output(output), progress(progress), names(files.selection) {}

    void run(unsigned threadCount) {
        std::vector<std::thread> threads;
        try {
            while (threads.size() + 1 < threadCount)
                threads.emplace_back([this] { workOn(); });
        } catch (const std::system_error&) {
            // Those that there are do.
        }
        workOn();
        for (std::thread& thread : threads)
            thread.join();
        if (failure)
            std::rethrow_exception(failure);
    }

    int worst() const {
        return counts[FAILURE] != 0 ? FAILURE : counts[ANSWER_IS_NO] != 0 ? ANSWER_IS_NO : DONE;
    }

    bool hasFiles() const { return counts[DONE] + counts[ANSWER_IS_NO] + counts[FAILURE] != 0; }

    std::string summary() const {
        return std::to_string(counts[DONE]) + " packages done, " + std::to_string(counts[ANSWER_IS_NO]) +
               " answered no, " + std::to_string(counts[FAILURE]) + " failed";
    }

private:
    struct EndOfTurn {
        OrderedOutput& output;
        OrderedOutput::Turn& turn;

        ~EndOfTurn() { output.end(turn); }
    };

    struct Job {
        FoundFile file;
        OrderedOutput::Turn* turn;
    };

    void workOn() noexcept {
        try {
            while (std::optional<Job> job = take())
                runOver(*job);
        } catch (...) {
            const std::lock_guard<std::mutex> lock(mutex);
            failure = std::current_exception();
        }
    }

    std::optional<Job> take() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (failure || output.hasFailed())
            return std::nullopt;
        std::optional<FoundFile> file = names.next();
        if (!file)
            return std::nullopt;
        return Job{std::move(*file), &output.begin()};
    }

    void runOver(const Job& job) {
        const EndOfTurn end{output, *job.turn};
        FileRun run(job.file.path, files.options, *job.turn);
        int status = FAILURE;
        try {
            if (!job.file.failure.empty())
                throw opc::Exception(job.file.failure);
            action(run);
            status = run.finish(nullptr);
        } catch (const CLI::Error&) {
            throw; // what is wrong with the arguments is wrong for all files
        } catch (const std::exception& e) {
            status = run.finish(&e);
        }
        progress.addFile();
        ++counts[static_cast<std::size_t>(status)];
    }

    const Files& files;
    const Files::Action& action;
    OrderedOutput& output;
    Progress& progress;
    FileNames names;
    std::mutex mutex; ///< of what follows and of the names
    std::exception_ptr failure;
    std::array<std::atomic<std::uint64_t>, 4> counts{}; ///< of files, by exit status
};

/// Whether two names, of which links may be part, lead to the same place.
bool isSamePlace(const std::string& path, const std::string& other) {
    std::error_code error;
    const std::filesystem::path place = std::filesystem::canonical(path, error);
    return !error && place == std::filesystem::canonical(other, error) && !error;
}

unsigned countThreads(const Files& files) {
    const unsigned wanted = files.jobs != 0 ? files.jobs : std::max(1U, std::thread::hardware_concurrency());
    const bool areCounted = files.selection.folders.empty() && files.selection.lists.empty();
    return areCounted ? std::min(wanted, static_cast<unsigned>(files.selection.packages.size())) : wanted;
}

std::shared_ptr<Files> addCommon(CLI::App& command, const Command& own) {
    auto files = std::make_shared<Files>();
    files->options.command = &own;
    addReadOptions(command, files->options.reading);
    addOutputOptions(command, files->options.output);
    return files;
}

CLI::Option* addPackage(CLI::App& command, Files& files, const char* what) {
    return command
        .add_option_function<std::string>(
            "PACKAGE", [&files](const std::string& path) { files.selection.packages = {path}; }, what)
        ->type_name("");
}

void addSelection(CLI::App& command, Files& files) {
    addSelectionOptions(command, files.selection);
    command
        .add_option("-j,--jobs", files.jobs,
                    "How many packages are read at the same time; without it, one for each core")
        ->check(CLI::Range(1, 1024))
        ->type_name("N")
        ->group("Many packages");
    addJSONOptions(command, files.options.output);
}

} // namespace

void Files::run(const Action& action) {
    run(action, makeFrame());
}

Files::Frame Files::makeFrame() const {
    const OutputOptions::Format format = options.output.format();
    if (selection.isMany() && format == OutputOptions::Format::Envelope)
        return {[](std::ostream& output) { output << "[\n"; }, ",\n",
                [](std::ostream& output) { output << "\n]\n"; }};
    return {};
}

void Files::run(const Action& action, const Frame& frame) {
    options.isOneOfMany = selection.isMany();
    if (selection.packages.empty() && !options.isOneOfMany)
        throw CLI::RequiredError("PACKAGE");
    if (options.output.format() == OutputOptions::Format::JSON)
        requireOne("--json");
    if (!options.target.empty())
        requireOne("--output");
    if (!selection.takesFolders && !options.target.empty() &&
        isSamePlace(options.target, selection.packages.front()))
        options.target.clear(); // it is changed in place, and nothing is lost that others save meanwhile
    const bool isPiped = options.target.empty() && options.isChange && selection.packages.front() == "-";
    if ((isPiped || options.target == "-") && options.output.format() != OutputOptions::Format::Text)
        throw CLI::ValidationError("--json", "doesn't fit with --output -, which takes standard output");
    if (options.isChange)
        takeSourceDate(options.reading.zip);
    Progress progress(options.isOneOfMany);
    options.reading.zip.whenRead = [&progress](std::uint64_t bytes) { progress.add(bytes); };
    OrderedOutput output(std::cout, std::cerr, progress, frame.between, WINDOW);
    Work work(*this, action, output, progress);
    if (frame.begin && !options.output.quiet)
        frame.begin(std::cout);
    work.run(countThreads(*this));
    options.reading.zip.whenRead = nullptr;
    progress.hide();
    if (frame.end && !options.output.quiet)
        frame.end(std::cout);
    if (!work.hasFiles() && !output.hasFailed())
        tell({}, "no packages found");
    else if (options.isOneOfMany && options.output.verbose)
        tell({}, work.summary());
    if (work.worst() != DONE)
        throw EndsWith{work.worst()};
}

void Files::requireOne(const std::string& option) const {
    if (selection.isMany())
        throw CLI::ValidationError(option, option == "--json"
                                               ? "is for one package; use --json=2 or --jsonl for more"
                                               : "is for one package");
}

std::shared_ptr<Files> addFiles(CLI::App& command, const Command& own) {
    auto files = addCommon(command, own);
    command.add_option("PACKAGE", files->selection.packages, "The packages' files; - is standard input")
        ->type_name("");
    addSelection(command, *files);
    return files;
}

std::shared_ptr<Files> addFilesBefore(CLI::App& command, const Command& own) {
    auto files = addCommon(command, own);
    addPackage(command, *files, "The package's file; - is standard input");
    addSelection(command, *files);
    return files;
}

std::shared_ptr<Files> addFile(CLI::App& command, const Command& own) {
    auto files = addCommon(command, own);
    addPackage(command, *files, "The package's file; - is standard input")->required();
    return files;
}

std::shared_ptr<Files> addChangedFile(CLI::App& command, const Command& own) {
    auto files = addFile(command, own);
    files->options.isChange = true;
    addTarget(command, files->options);
    addDryRun(command, files->options);
    addJSONOptions(command, files->options.output);
    return files;
}

std::shared_ptr<Files> addNewFile(CLI::App& command, const Command& own) {
    auto files = std::make_shared<Files>();
    files->options.isChange = true;
    files->options.command = &own;
    addPackage(command, *files, "The package's file; - is standard output")->required();
    addDryRun(command, files->options);
    addOutputOptions(command, files->options.output);
    return files;
}

CLI::Option* addDryRun(CLI::App& command, RunOptions& options) {
    return command.add_flag("-n,--dry-run", options.dryRun, "Write nothing; print what would change");
}

CLI::Option* addTarget(CLI::App& command, RunOptions& options) {
    return command
        .add_option(
            "-o,--output", options.target,
            "Write the changed package to this file, and leave PACKAGE as it is; - is standard output")
        ->type_name("FILE");
}

} // namespace opctool
