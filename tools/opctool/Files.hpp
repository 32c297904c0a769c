#pragma once

#include "FileNames.hpp"
#include "FileRun.hpp"

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace opctool {

/// The packages that a command is given, and the options of reading them and of printing. A command over packages
/// declares them with one of the functions below, and runs over them in its callback:
///
///     void declare(CLI::App& command) {
///         const auto files = addFiles(command, LS);
///         command.callback([files] { files->run(ls); });
///     }
///
///     void ls(FileRun& run) {
///         OpenedPackage package(run, OpenMode::ReadOnly);
///         if (run.wantsJSON()) … run.json() … else … run.out() …
///     }
///
/// What the command does with one file (`Action`) prints only through its `FileRun`, says no with `FileRun::sayNo` and
/// fails with an exception. Everything else is done here: many files and threads, the order of output, the name of the
/// file in each line, envelopes, failures, exit status, progress. The action is called from several threads at the same
/// time, each with another file, so that what it captures must not change. An argument that is wrong, which is a
/// `CLI::Error`, ends the whole.
class Files {
public:
    using Action = std::function<void(FileRun&)>;

    /// What stands around the outputs of all files together, such as the brackets of an array.
    struct Frame {
        using Print = std::function<void(std::ostream&)>;

        Print begin;         ///< may be empty
        std::string between; ///< the outputs of two files
        Print end;           ///< may be empty; called when all files have ended
    };

    FileSelection selection;
    RunOptions options;
    unsigned jobs = 0; ///< threads; 0: one for each core

    /// Runs the action over each file.
    /// @throws EndsWith              if the exit status isn't 0: the worst of all files, 3 before 1 before 0
    /// @throws CLI::ValidationError  if the options don't fit together
    void run(const Action& action);

    /// The same with a frame of the command's own.
    void run(const Action& action, const Frame& frame);

    /// @throws CLI::ValidationError  if more than one file is given, or a way to find many
    void requireOne(const std::string& option) const;

private:
    Frame makeFrame() const;
};

/// For a command that reads packages and takes no other argument: PACKAGE…, -r, --files-from, -j, JSON, limits.
std::shared_ptr<Files> addFiles(CLI::App& command, const Command& own);

/// For one that takes another argument behind the package: PACKAGE, and for many -r and --files-from.
std::shared_ptr<Files> addFilesBefore(CLI::App& command, const Command& own);

/// For one that reads one package: PACKAGE and limits.
std::shared_ptr<Files> addFile(CLI::App& command, const Command& own);

/// For one that changes a package: PACKAGE, -o, -n and limits.
std::shared_ptr<Files> addChangedFile(CLI::App& command, const Command& own);

/// For one that makes a package: PACKAGE, -n.
std::shared_ptr<Files> addNewFile(CLI::App& command, const Command& own);

/// Declares -n.
CLI::Option* addDryRun(CLI::App& command, RunOptions& options);

/// Declares -o.
CLI::Option* addTarget(CLI::App& command, RunOptions& options);

} // namespace opctool
