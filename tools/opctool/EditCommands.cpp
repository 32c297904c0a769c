#include "ChangeText.hpp"
#include "Commands.hpp"
#include "EditedPackage.hpp"
#include "Files.hpp"
#include "SignatureOption.hpp"

#include <opc/core/Exception.hpp>
#include <opc/editing/Moving.hpp>
#include <opc/editing/Removing.hpp>

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace opctool {

namespace {

using opc::editing::Editor;
using opc::model::ContentType;
using opc::model::PartName;
using opc::model::TargetMode;

using Edit = std::function<void(Editor&)>;

/// Declares what each command that edits a package has.
/// @param tells  whether the changes are its output; otherwise only -n and -v print them
void declareEdit(CLI::App& command, const Command& own, bool tells, Edit edit) {
    const auto files = addChangedFile(command, own);
    addSignatureOption(command, files->options);
    command.callback([files, tells, edit = std::move(edit)] {
        files->run([&](FileRun& run) {
            EditedPackage package(run);
            edit(package.editor());
            package.finish({}, tells);
        });
    });
}

CLI::Option* addText(CLI::App& command, const char* name, std::string& text, const char* what) {
    return command.add_option(name, text, what)->required()->type_name("");
}

/// A failure names the argument, which is one of several.
PartName nameOf(const std::string& argument) {
    try {
        return PartName(fromArgument(argument));
    } catch (opc::Exception& e) {
        e.addDetails(argument);
        throw;
    }
}

struct RemoveArguments {
    std::vector<std::string> parts;
    opc::editing::RemoveOptions options;
};

void declareRemove(CLI::App& command) {
    const auto arguments = std::make_shared<RemoveArguments>();
    declareEdit(command, RM, false, [arguments](Editor& editor) {
        for (const std::string& part : arguments->parts)
            fromArgument(part);
        removeParts(editor, arguments->parts, arguments->options);
    });
    command
        .add_option("PART", arguments->parts,
                    "Names of parts; * stands for any characters but slashes, ** for any")
        ->required()
        ->type_name("");
    command.add_flag("--incoming", arguments->options.incoming,
                     "Delete also the relationships that lead to them");
    command.add_flag("--cascade", arguments->options.cascade,
                     "Delete also the parts that only these lead to");
}

void declareMove(CLI::App& command) {
    const auto names = std::make_shared<std::pair<std::string, std::string>>();
    declareEdit(command, MV, true,
                [names](Editor& editor) { movePart(editor, nameOf(names->first), nameOf(names->second)); });
    addText(command, "PART", names->first, "The part's name");
    addText(command, "NAME", names->second, "Its new name");
}

void declareCollect(CLI::App& command) {
    declareEdit(command, GC, true, [](Editor& editor) { collectUnreachable(editor); });
}

void declareRetype(CLI::App& command) {
    const auto arguments = std::make_shared<std::pair<std::string, std::string>>();
    declareEdit(command, RETYPE, true, [arguments](Editor& editor) {
        editor.retypePart(nameOf(arguments->first), ContentType(fromArgument(arguments->second)));
    });
    addText(command, "PART", arguments->first, "The part's name");
    addText(command, "TYPE", arguments->second, "Its new content type, such as image/png");
}

struct RetargetArguments {
    std::string source, id, target;
    bool external = false;
};

void declareRetarget(CLI::App& command) {
    const auto arguments = std::make_shared<RetargetArguments>();
    declareEdit(command, RETARGET, true, [arguments](Editor& editor) {
        editor.retarget(nameOf(arguments->source), fromArgument(arguments->id),
                        fromArgument(arguments->target),
                        arguments->external ? TargetMode::External : TargetMode::Internal);
    });
    addText(command, "SOURCE", arguments->source, "A part name, or \"/\" for the package itself");
    addText(command, "ID", arguments->id, "The relationship's ID");
    addText(command, "TARGET", arguments->target,
            "A part name, or a reference relative to the source; with --external any reference");
    command.add_flag("--external", arguments->external, "The target is outside the package");
}

} // namespace

const Command RM{
    "rm",
    "Delete parts and their relationships",
    declareRemove,
    "A name may have stars: * stands for any characters but slashes, ** for any. The case of ASCII "
    "letters doesn't count. Without --incoming, relationships that lead to the parts stay.",
    "opctool rm report.docx /docProps/thumbnail.jpeg --incoming\n"
    "opctool rm report.docx '/notes/**' --incoming --dry-run\n"
    "opctool rm report.docx /word/document.xml --incoming --cascade",
    "",
    CHANGES_SCHEMA};

const Command MV{
    "mv",
    "Rename a part, and let everything that leads to it follow",
    declareMove,
    "Every relationship that leads to the part leads to its new name, and its own relationships lead "
    "where they have led. IDs, content and content type stay. Names that stand in the content of parts "
    "don't change: programs find parts by relationships.",
    "opctool mv report.docx /docProps/thumbnail.jpeg /docProps/cover.jpeg",
    "",
    CHANGES_SCHEMA};

const Command GC{
    "gc",
    "Delete the parts that no path of relationships leads to",
    declareCollect,
    "What a signature signs stays. Packages whose parts are found in other ways are refused: XPS, NuGet, "
    "Visual Studio extensions, Windows apps.",
    "opctool gc report.docx --dry-run\nopctool gc report.docx -o smaller.docx",
    "",
    CHANGES_SCHEMA};

const Command RETYPE{"retype",
                     "Give a part another content type",
                     declareRetype,
                     "Only the content types stream changes.",
                     "opctool retype report.docx /docProps/thumbnail.jpeg image/png",
                     "",
                     CHANGES_SCHEMA};

const Command RETARGET{"retarget",
                       "Give a relationship another target",
                       declareRetarget,
                       "Its ID, its type and its place in the relationships part stay.",
                       "opctool retarget report.docx / rId7 /word/document.xml\n"
                       "opctool retarget report.docx / rId7 https://example.com/ --external",
                       "",
                       CHANGES_SCHEMA};

} // namespace opctool
