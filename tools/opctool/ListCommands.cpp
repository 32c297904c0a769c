#include "Commands.hpp"
#include "JSONOutput.hpp"
#include "OpenedPackage.hpp"
#include "SourceNames.hpp"
#include "Table.hpp"
#include "TerminalText.hpp"

#include <opc/core/StreamHelper.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/PackageHelper.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <functional>
#include <iostream>
#include <memory>
#include <vector>

namespace opctool {

namespace {

using nlohmann::ordered_json;
using opc::toUDEString;
using opc::interfaces::OpenMode;
using opc::model::Part;
using opc::model::Relationship;
using opc::model::RelationshipSource;
using opc::model::TargetMode;

void printJSON(const ordered_json& list) {
    std::cout << escapedJSON(list.dump(2)) << '\n';
}

struct LsArguments {
    PackageArgument package;
    bool json = false;
};

void ls(const LsArguments& arguments) {
    OpenedPackage package(arguments.package, OpenMode::ReadOnly);
    ordered_json list = ordered_json::array();
    for (const Part& part : package->getParts())
        list.push_back({{"name", toUDEString(part.getName().toString())},
                        {"contentType", toUDEString(part.getContentType().toString())},
                        {"size", measure(part)},
                        {"relationships", part.getRelationships().size()}});
    if (arguments.json) {
        printJSON(list);
        return;
    }
    Table table(
        {{"NAME"}, {"CONTENT TYPE"}, {"SIZE", Table::Align::Right}, {"RELATIONSHIPS", Table::Align::Right}});
    for (const auto& row : list)
        table.addRow({row["name"], row["contentType"], row["size"].dump(), row["relationships"].dump()});
    table.print(std::cout, outputIsTerminal());
}

struct RelsArguments {
    PackageArgument package;
    std::string source = "/";
    bool all = false;
    bool json = false;
};

ordered_json describe(const Relationship& relationship) {
    const bool isInternal = relationship.getTargetMode() == TargetMode::Internal;
    ordered_json resolved; // null: a target outside the package isn't resolved
    if (isInternal)
        resolved = toUDEString(relationship.getTargetURI().toString());
    return {{"source", toUDEString(relationship.getSourceURI().toString())},
            {"id", toUDEString(relationship.getID())},
            {"type", toUDEString(relationship.getType())},
            {"target", toUDEString(relationship.getTarget())},
            {"mode", isInternal ? "Internal" : "External"},
            {"resolved", resolved}};
}

void rels(const RelsArguments& arguments) {
    OpenedPackage package(arguments.package, OpenMode::ReadOnly);
    const auto forEachSource = [&](const auto& visit) {
        package.withSource(arguments.source, visit);
        if (arguments.all)
            for (const Part& part : package->getParts())
                visit(part);
    };
    SourceNames names;
    forEachSource([&names](const RelationshipSource& source) { names.add(source); });
    const auto forEach = [&](const std::function<void(const ordered_json&)>& visit) {
        forEachSource([&visit](const RelationshipSource& source) {
            for (const Relationship& relationship : source.getRelationships())
                visit(describe(relationship));
        });
    };
    if (arguments.json) {
        JSONOutput output(std::cout);
        output.beginArray();
        forEach([&output](const ordered_json& row) { output.add(row); });
        output.end();
        return;
    }
    const Table table({{"SOURCE"}, {"ID"}, {"MODE"}, {"TARGET"}, {"RESOLVED"}, {"TYPE"}});
    table.print(std::cout, outputIsTerminal(), [&forEach](const std::function<void(Table::Cells)>& print) {
        forEach([&print](const ordered_json& row) {
            print({row["source"], row["id"], row["mode"], row["target"],
                   row["resolved"].is_null() ? std::string("-") : row["resolved"].get<std::string>(),
                   row["type"]});
        });
    });
}

struct CatArguments {
    PackageArgument package;
    std::string part;
};

void cat(const CatArguments& arguments) {
    OpenedPackage package(arguments.package, OpenMode::ReadOnly);
    const Part part = package->getPart(opc::model::PartName(fromArgument(arguments.part)));
    opc::StreamHelper::copyStreamToStream(part.getInputStream(), std::cout);
}

} // namespace

void addListCommands(CLI::App& app) {
    auto lsArguments = std::make_shared<LsArguments>();
    CLI::App* lsCommand = app.add_subcommand("ls", "List the parts: name, content type, size, relationships");
    addPackage(*lsCommand, lsArguments->package);
    lsCommand->add_flag("--json", lsArguments->json, "Print a JSON array");
    lsCommand->callback([lsArguments] { ls(*lsArguments); });

    auto relsArguments = std::make_shared<RelsArguments>();
    CLI::App* relsCommand =
        app.add_subcommand("rels", "List the relationships of the package, of a part, or of all");
    addPackage(*relsCommand, relsArguments->package);
    CLI::Option* source = relsCommand->add_option("SOURCE", relsArguments->source,
                                                  "A part name, or \"/\" for the package itself");
    relsCommand->add_flag("--all", relsArguments->all, "List those of the package and of every part")
        ->excludes(source);
    relsCommand->add_flag("--json", relsArguments->json, "Print a JSON array");
    relsCommand->callback([relsArguments] { rels(*relsArguments); });

    auto catArguments = std::make_shared<CatArguments>();
    CLI::App* catCommand = app.add_subcommand("cat", "Write the content of a part to standard output");
    addPackage(*catCommand, catArguments->package);
    catCommand->add_option("PART", catArguments->part, "A part name")->required();
    catCommand->callback([catArguments] { cat(*catArguments); });
}

} // namespace opctool
