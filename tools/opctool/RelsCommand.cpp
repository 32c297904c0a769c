#include "Commands.hpp"
#include "Files.hpp"
#include "OpenedPackage.hpp"
#include "SourceNames.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <functional>

namespace opctool {

namespace {

using nlohmann::ordered_json;
using opc::toUDEString;
using opc::model::Package;
using opc::model::Part;
using opc::model::PartName;
using opc::model::Relationship;
using opc::model::RelationshipSource;
using opc::model::TargetMode;
using opc::model::URI;

struct RelsArguments {
    std::string source;
    bool all = false;
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

/// Whether the part is there that the relationship leads to; null if its target is outside the package.
ordered_json targetExists(const Package& package, const Relationship& relationship) {
    if (relationship.getTargetMode() == TargetMode::External)
        return nullptr;
    try {
        const URI target = relationship.getTargetURI();
        return !target.hasScheme() && !target.hasAuthority() && package.hasPart(PartName(target.getPath()));
    } catch (const opc::Exception&) {
        return false; // no part can have such a name
    }
}

class Listing {
public:
    Listing(OpenedPackage& package, const RelsArguments& arguments) : package(package), arguments(arguments) {
        SourceNames names;
        forEachSource([&names](const RelationshipSource& source) { names.add(source); });
    }

    void forEach(const std::function<void(const Relationship&)>& visit) const {
        forEachSource([&visit](const RelationshipSource& source) {
            for (const Relationship& relationship : source.getRelationships())
                visit(relationship);
        });
    }

private:
    template <typename Visit>
    void forEachSource(const Visit& visit) const {
        package.withSource(arguments.source, visit);
        if (arguments.all)
            for (const Part& part : package->getParts())
                visit(part);
    }

    OpenedPackage& package;
    const RelsArguments& arguments;
};

void rels(FileRun& run, const RelsArguments& arguments) {
    OpenedPackage package(run, opc::interfaces::OpenMode::ReadOnly);
    const Listing listing(package, arguments);
    if (run.wantsJSON()) {
        JSONOutput& output = run.json();
        output.beginArray();
        listing.forEach([&](const Relationship& relationship) {
            ordered_json row = describe(relationship);
            if (run.hasEnvelope())
                row["exists"] = targetExists(*package, relationship);
            output.add(row);
        });
        output.end();
        return;
    }
    const Table table({{"SOURCE"}, {"ID"}, {"MODE"}, {"TARGET"}, {"RESOLVED"}, {"TYPE"}});
    table.print(run.out(), run.tableStyle(), [&](const std::function<void(Table::Cells)>& print) {
        listing.forEach([&print](const Relationship& relationship) {
            const ordered_json row = describe(relationship);
            print({row["source"], row["id"], row["mode"], row["target"],
                   row["resolved"].is_null() ? std::string("-") : row["resolved"].get<std::string>(),
                   row["type"]});
        });
    });
}

/// With -r or --files-from there is no PACKAGE: what stands in its place is SOURCE.
void shiftSource(FileSelection& selection, RelsArguments& arguments) {
    const bool isFound = !selection.folders.empty() || !selection.lists.empty();
    if (!isFound || selection.packages.empty())
        return;
    if (!arguments.source.empty() || arguments.all)
        throw CLI::ValidationError("PACKAGE", "with -r or --files-from, give SOURCE or --all alone");
    arguments.source = selection.packages.front();
    selection.packages.clear();
}

void declareRels(CLI::App& command) {
    const auto arguments = std::make_shared<RelsArguments>();
    const auto files = addFilesBefore(command, RELS);
    CLI::Option* source = command
                              .add_option("SOURCE", arguments->source,
                                          "A part name, or \"/\" for the package itself, the default")
                              ->type_name("");
    command.add_flag("--all", arguments->all, "List those of the package and of every part")
        ->excludes(source);
    command.callback([files, arguments] {
        shiftSource(files->selection, *arguments);
        if (arguments->source.empty())
            arguments->source = "/";
        fromArgument(arguments->source);
        files->run([&arguments](FileRun& run) { rels(run, *arguments); });
    });
}

} // namespace

const Command RELS{"rels",
                   "List the relationships of the package, of a part, or of all",
                   declareRels,
                   "",
                   "opctool rels report.docx\n"
                   "opctool rels report.docx /word/document.xml\n"
                   "opctool rels -r folder --all --jsonl",
                   "",
                   R"({
  "type": "array",
  "items": {
    "type": "object",
    "required": ["source", "id", "type", "target", "mode", "resolved", "exists"],
    "properties": {
      "source": {"description": "a part name, or / for the package", "type": "string"},
      "id": {"type": "string"},
      "type": {"type": "string"},
      "target": {"description": "as it is written", "type": "string"},
      "mode": {"enum": ["Internal", "External"]},
      "resolved": {"description": "null if the target is outside the package", "type": ["string", "null"]},
      "exists": {"description": "whether there is such a part; null if the target is outside the package",
                 "type": ["boolean", "null"]}
    }
  }
})"};

} // namespace opctool
