#include "ChangeText.hpp"
#include "Commands.hpp"
#include "EditedPackage.hpp"
#include "Files.hpp"
#include "SignatureOption.hpp"
#include "StandardInput.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/editing/FileContent.hpp>

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>
#include <string>

namespace opctool {

namespace {

using opc::interfaces::OpenMode;
using opc::model::ContentType;
using opc::model::PartName;
using opc::model::TargetMode;

struct ChangeArguments {
    std::string part;
    std::string file;
    std::string contentType;
    std::string source;
    std::string type;
    std::string target;
    std::string id;
    bool external = false;
    bool force = false;
};

void create(FileRun& run, const ChangeArguments& arguments) {
    if (!arguments.force && !run.isStandardInput() && std::filesystem::exists(run.path()))
        throw opc::Exception("The file exists already; use --force to replace it",
                             make_error_code(boost::system::errc::file_exists));
    OpenedPackage package(run, OpenMode::CreateOnly);
    package.save();
}

/// The content that a command gives a part.
std::unique_ptr<opc::InputStream> contentOf(const ChangeArguments& arguments) {
    if (arguments.file == "-")
        return std::make_unique<StandardInput>();
    return std::make_unique<opc::editing::FileContent>(arguments.file);
}

void add(FileRun& run, const ChangeArguments& arguments) {
    EditedPackage package(run);
    const auto content = contentOf(arguments);
    package.editor().createPart(PartName(fromArgument(arguments.part)),
                                ContentType(fromArgument(arguments.contentType)), *content);
    package.finish();
}

void put(FileRun& run, const ChangeArguments& arguments) {
    EditedPackage package(run);
    const auto content = contentOf(arguments);
    package.editor().replaceContent(PartName(fromArgument(arguments.part)), *content);
    package.finish();
}

/// A blank type counts as empty when it is read, and would make a package that can't be opened.
std::string checkNotBlank(const std::string& argument) {
    return argument.find_first_not_of(" \t\r\n") == std::string::npos ? "It is blank" : "";
}

void relate(FileRun& run, const ChangeArguments& arguments) {
    EditedPackage package(run);
    const auto created = package.editor().addRelationship(
        PartName(fromArgument(arguments.source)),
        {fromArgument(arguments.type), fromArgument(arguments.target),
         arguments.external ? TargetMode::External : TargetMode::Internal, fromArgument(arguments.id)});
    package.finish(opc::toUDEString(created.getID()));
}

void unrelate(FileRun& run, const ChangeArguments& arguments) {
    EditedPackage package(run);
    package.editor().deleteRelationship(PartName(fromArgument(arguments.source)), fromArgument(arguments.id));
    package.finish();
}

using ChangeAction = void (*)(FileRun&, const ChangeArguments&);

/// Declares what each command that changes a package has.
std::shared_ptr<ChangeArguments> declareChange(CLI::App& command, const Command& own, ChangeAction change) {
    auto arguments = std::make_shared<ChangeArguments>();
    const auto files = addChangedFile(command, own);
    addSignatureOption(command, files->options);
    command.callback([files, arguments, change] {
        if (arguments->file == "-" && files->selection.packages.front() == "-")
            throw CLI::ValidationError("FILE", "can't be standard input, which is the package");
        files->run([&](FileRun& run) { change(run, *arguments); });
    });
    return arguments;
}

void addPart(CLI::App& command, ChangeArguments& arguments, const char* what) {
    command.add_option("PART", arguments.part, what)->required()->type_name("");
}

void addContent(CLI::App& command, ChangeArguments& arguments, const char* what) {
    command.add_option("FILE", arguments.file, std::string(what) + "; - is standard input")
        ->required()
        ->check([](const std::string& file) { return file == "-" ? std::string() : CLI::ExistingFile(file); })
        ->type_name("");
}

void addSource(CLI::App& command, ChangeArguments& arguments) {
    command.add_option("SOURCE", arguments.source, "A part name, or \"/\" for the package itself")
        ->required()
        ->type_name("");
}

void declareNew(CLI::App& command) {
    const auto arguments = std::make_shared<ChangeArguments>();
    const auto files = addNewFile(command, NEW);
    command.add_flag("--force", arguments->force, "Replace an existing file");
    command.callback([files, arguments] { files->run([&](FileRun& run) { create(run, *arguments); }); });
}

void declareAdd(CLI::App& command) {
    const auto arguments = declareChange(command, ADD, add);
    addPart(command, *arguments, "The name of the new part, such as /doc/image.png");
    addContent(command, *arguments, "The file with its content");
    command.add_option("--type", arguments->contentType, "Its content type, such as image/png")
        ->required()
        ->type_name("TYPE");
}

void declarePut(CLI::App& command) {
    const auto arguments = declareChange(command, PUT, put);
    addPart(command, *arguments, "The part's name");
    addContent(command, *arguments, "The file with its new content");
}

void declareRelate(CLI::App& command) {
    const auto arguments = declareChange(command, RELATE, relate);
    addSource(command, *arguments);
    command.add_option("TYPE", arguments->type, "The type of the relationship, a URI")
        ->required()
        ->check(checkNotBlank)
        ->type_name("");
    command
        .add_option("TARGET", arguments->target,
                    "A part name, or a reference relative to the source; with --external any reference")
        ->required()
        ->check(checkNotBlank)
        ->type_name("");
    command.add_flag("--external", arguments->external, "The target is outside the package");
    command.add_option("--id", arguments->id, "The ID; without it, one is generated")->type_name("ID");
}

void declareUnrelate(CLI::App& command) {
    const auto arguments = declareChange(command, UNRELATE, unrelate);
    addSource(command, *arguments);
    command.add_option("ID", arguments->id, "The relationship's ID")->required()->type_name("");
}

} // namespace

const Command NEW{"new", "Create a package without parts", declareNew, "", "opctool new report.zip"};

const Command ADD{"add",
                  "Add a part, with content from a file",
                  declareAdd,
                  "",
                  "opctool add report.docx /word/media/logo.png logo.png --type image/png",
                  "",
                  CHANGES_SCHEMA};

const Command PUT{"put",
                  "Replace the content of a part with the content of a file",
                  declarePut,
                  "",
                  "opctool put report.docx /word/document.xml new.xml\n"
                  "opctool put report.docx /word/document.xml new.xml -o changed.docx",
                  "",
                  CHANGES_SCHEMA};

const Command RELATE{"relate",
                     "Add a relationship and print its ID",
                     declareRelate,
                     "",
                     "opctool relate report.docx / urn:example:note /notes/note.txt\n"
                     "opctool relate report.docx / urn:example:see http://example.com/ --external",
                     "",
                     CHANGES_SCHEMA};

const Command UNRELATE{
    "unrelate", "Delete a relationship", declareUnrelate, "", "opctool unrelate report.docx / rId7",
    "",         CHANGES_SCHEMA};

} // namespace opctool
