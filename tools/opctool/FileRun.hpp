#pragma once

#include "JSONOutput.hpp"
#include "OrderedOutput.hpp"
#include "OutputOptions.hpp"
#include "ReadOptions.hpp"
#include "Table.hpp"

#include <opc/interfaces/Oddity.hpp>

#include <functional>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

namespace opctool {

struct Command;

/// What all runs of a command have in common.
struct RunOptions {
    const Command* command = nullptr; ///< whose run it is
    ReadOptions reading;
    OutputOptions output;
    std::string
        target; ///< of a change: the file to write instead, "-" for standard output; empty: the package itself
    bool isChange = false;
    bool dryRun = false;          ///< of a change: make it, and write nothing
    bool breakSignatures = false; ///< of a change: make it also if signatures don't hold then
    bool isOneOfMany = false;
    bool namesFiles = false; ///< the command's own text names the file in each line
};

/// Something that was passed over when a package was read.
struct HiddenItem {
    std::string place; ///< the item, part or relationship; empty for the package as a whole
    std::size_t line = 0;
    std::string reason;
    std::string done; ///< what is done about it
    std::string rule; ///< of the standard, such as M2.4
};

/// The run of a command over one file: the file's name, and where everything goes that is printed about it. One thread
/// uses it.
class FileRun {
public:
    /// All must outlive this object.
    FileRun(std::string path, const RunOptions& options, OrderedOutput::Turn& turn);
    FileRun(const FileRun&) = delete;
    FileRun& operator=(const FileRun&) = delete;
    ~FileRun();

    /// The file's path as it was given; "-" is standard input.
    const std::string& path() const { return filePath; }
    bool isStandardInput() const { return filePath == "-"; }
    const RunOptions& options() const { return runOptions; }

    /// The file that a change writes: "-" is standard output; empty if it is the package's own.
    std::string target() const {
        return runOptions.target.empty() && isStandardInput() ? filePath : runOptions.target;
    }

    /// Whether nothing of the result is printed, so that it needn't be composed.
    bool isQuiet() const { return runOptions.output.quiet; }

    /// Whether to print JSON. If not: text.
    bool wantsJSON() const { return format != OutputOptions::Format::Text; }

    /// Whether that is shape 2, which has an envelope.
    bool hasEnvelope() const { return wantsJSON() && format != OutputOptions::Format::JSON; }

    /// The JSON of the result: begin or add one value. It becomes the whole document, or `result` in the envelope.
    JSONOutput& json();

    /// For text. If this file is one of many, each line gets the file's name in front, and empty lines are dropped.
    std::ostream& out() { return output; }

    /// Prints a line that tells the name of what was made, as `printLine` does, or adds it to the JSON.
    void printName(const std::string& name);

    /// Prints a line of text: on standard error, as a remark, if the package goes to standard output.
    void printLine(const std::string& line);

    /// How tables are to look.
    Table::Style tableStyle() const;

    /// Prints `opctool: FILE: TEXT` on standard error.
    void tell(const std::string& text);

    /// The same for a remark, which -q silences.
    void remark(const std::string& text);

    /// Reports what a package has that breaks the standard: in the envelope, or as remarks.
    void report(const std::vector<opc::interfaces::Oddity>& oddities);

    /// Puts it into the envelope.
    void addHidden(HiddenItem item);

    /// Calls this when the run has ended and those of all files before it have: for sums over all files, in their order.
    /// The calls of two files never overlap.
    void whenDone(std::function<void()> call) { turn.whenDone(std::move(call)); }

    /// The answer is no: exit status 1.
    void sayNo();

    /// Ends the run.
    /// @param failure  why it failed; null if it didn't
    /// @return the exit status
    int finish(const std::exception* failure);

private:
    class Buffer;

    void printError(const std::string& className, Color color, const std::string& text);

    const std::string filePath;
    const RunOptions& runOptions;
    const OutputOptions::Format format;
    OrderedOutput::Turn& turn;
    std::unique_ptr<Buffer> buffer;
    std::ostream output;
    std::unique_ptr<JSONOutput> document;
    std::vector<HiddenItem> hidden;
    int status = 0;
};

} // namespace opctool
