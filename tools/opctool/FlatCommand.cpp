#include "ArchiveFile.hpp"
#include "Commands.hpp"
#include "Files.hpp"

#include <opc/inspection/FlatText.hpp>

#include <CLI/CLI.hpp>

#include <memory>

namespace opctool {

namespace {

void declareFlat(CLI::App& command) {
    const auto options = std::make_shared<opc::inspection::FlatTextOptions>();
    const auto files = addFile(command, FLAT);
    command.add_flag("--prefix", options->namesPart, "Begin each line with the name of its part");
    command.callback([files, options] {
        files->run([&options](FileRun& run) {
            opc::inspection::writeFlatText(openArchive(run), run.out(), *options);
        });
    });
}

} // namespace

const Command FLAT{
    "flat", "Print a whole package as one text", declareFlat,
    "The order is always the same: the relationships of the package, then the parts by name with "
    "their content types, relationships and contents, then items that are no parts. XML stands "
    "there with one element a line, other contents as size and digest. The text is for reading "
    "and comparing: no package can be made from it. A file that is no package is one line, so that "
    "git can compare any file through this command (see git-setup).",
    "opctool flat report.docx | less\n"
    "opctool flat report.docx --prefix | grep -i draft"};

} // namespace opctool
