#include "Commands.hpp"
#include "OpenedPackage.hpp"
#include "TerminalText.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <CLI/CLI.hpp>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <vector>

namespace opctool {

namespace {

using opc::interfaces::OpenMode;
using opc::model::ContentType;
using opc::model::Part;
using opc::model::PartName;
using opc::model::Relationship;
using opc::model::RelationshipSource;
using opc::model::URI;

struct Arguments {
    PackageArgument package;
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

void create(const Arguments& arguments) {
    if (!arguments.force && std::filesystem::exists(arguments.package.path))
        throw opc::Exception("The file exists already; use --force to replace it",
                             make_error_code(boost::system::errc::file_exists));
    OpenedPackage package(arguments.package, OpenMode::CreateOnly);
    package.save();
}

void copyFile(const std::string& path, opc::OutputStream& target) {
    std::ifstream file(path, std::ios::binary);
    std::vector<char> block(std::size_t{64} * 1024);
    while (file) {
        file.read(block.data(), static_cast<std::streamsize>(block.size()));
        target.write(reinterpret_cast<const unsigned char*>(block.data()),
                     static_cast<std::uint64_t>(file.gcount()));
    }
    if (!file.eof())
        throw opc::Exception(path + " can't be read",
                             {errno != 0 ? errno : EIO, boost::system::generic_category()});
}

void add(const Arguments& arguments) {
    OpenedPackage package(arguments.package, OpenMode::ReadWrite);
    const Part part =
        package->createPart(PartName(fromArgument(arguments.part)),
                            ContentType(fromArgument(arguments.contentType)), opc::model::StandardPartInfo());
    copyFile(arguments.file, part.getOutputStream());
    package.save();
}

void put(const Arguments& arguments) {
    OpenedPackage package(arguments.package, OpenMode::ReadWrite);
    copyFile(arguments.file, package->getPart(PartName(fromArgument(arguments.part))).getOutputStream());
    package.save();
}

void remove(const Arguments& arguments) {
    OpenedPackage package(arguments.package, OpenMode::ReadWrite);
    package->deletePart(PartName(fromArgument(arguments.part)));
    package.save();
}

/// A blank type counts as empty when it is read, and would make a package that can't be opened.
std::string checkNotBlank(const std::string& argument) {
    return argument.find_first_not_of(" \t\r\n") == std::string::npos ? "It is blank" : "";
}

void relate(const Arguments& arguments) {
    OpenedPackage package(arguments.package, OpenMode::ReadWrite);
    const std::u16string type = fromArgument(arguments.type);
    const std::u16string target = fromArgument(arguments.target);
    const std::u16string id = fromArgument(arguments.id);
    std::u16string created;
    package.withSource(arguments.source, [&](RelationshipSource& source) {
        const Relationship relationship = arguments.external
                                              ? source.createExternalRelationship(type, target, id)
                                              : source.createInternalRelationship(type, URI(target), id);
        created = relationship.getID();
    });
    package.save();
    std::cout << withoutControlCharacters(opc::toUDEString(created)) << '\n';
}

void unrelate(const Arguments& arguments) {
    OpenedPackage package(arguments.package, OpenMode::ReadWrite);
    package.withSource(arguments.source, [&arguments](RelationshipSource& source) {
        source.deleteRelationship(fromArgument(arguments.id));
    });
    package.save();
}

/// Declares a command that changes a package.
CLI::App* addCommand(CLI::App& app, const char* name, const char* what, void (*run)(const Arguments&),
                     const std::shared_ptr<Arguments>& arguments) {
    CLI::App* command = app.add_subcommand(name, what);
    addPackage(*command, arguments->package);
    command->callback([run, arguments] { run(*arguments); });
    return command;
}

} // namespace

void addChangeCommands(CLI::App& app) {
    const auto arguments = std::make_shared<Arguments>();
    const char* const sourceHelp = "A part name, or \"/\" for the package itself";

    CLI::App* command = app.add_subcommand("new", "Create a package without parts");
    command->add_option("PACKAGE", arguments->package.path, "The package's file")->required();
    command->add_flag("--force", arguments->force, "Replace an existing file");
    command->callback([arguments] { create(*arguments); });

    command = addCommand(app, "add", "Add a part, with content from a file", add, arguments);
    command->add_option("PART", arguments->part, "The name of the new part, such as /doc/image.png")
        ->required();
    command->add_option("FILE", arguments->file, "The file with its content")
        ->required()
        ->check(CLI::ExistingFile);
    command->add_option("--type", arguments->contentType, "Its content type, such as image/png")->required();

    command =
        addCommand(app, "put", "Replace the content of a part with the content of a file", put, arguments);
    command->add_option("PART", arguments->part, "The part's name")->required();
    command->add_option("FILE", arguments->file, "The file with its new content")
        ->required()
        ->check(CLI::ExistingFile);

    command = addCommand(app, "rm", "Delete a part and its relationships", remove, arguments);
    command->add_option("PART", arguments->part, "The part's name")->required();

    command = addCommand(app, "relate", "Add a relationship and print its ID", relate, arguments);
    command->add_option("SOURCE", arguments->source, sourceHelp)->required();
    command->add_option("TYPE", arguments->type, "The type of the relationship, a URI")
        ->required()
        ->check(checkNotBlank);
    command
        ->add_option("TARGET", arguments->target,
                     "A part name, or a reference relative to the source; with --external any reference")
        ->required()
        ->check(checkNotBlank);
    command->add_flag("--external", arguments->external, "The target is outside the package");
    command->add_option("--id", arguments->id, "The ID; without it, one is generated");

    command = addCommand(app, "unrelate", "Delete a relationship", unrelate, arguments);
    command->add_option("SOURCE", arguments->source, sourceHelp)->required();
    command->add_option("ID", arguments->id, "The relationship's ID")->required();
}

} // namespace opctool
