#include "Commands.hpp"
#include "CoverageText.hpp"
#include "JSONOutput.hpp"
#include "SignedPackage.hpp"
#include "Table.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/PackageCoverage.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/SignatureCoverage.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace opctool {

namespace {

using nlohmann::ordered_json;
using opc::toUDEString;
using opc::model::DigitalSignature;
using opc::model::PackageCoverage;
using opc::model::Part;
using opc::model::PartName;
using opc::model::Relationship;
using opc::model::RelationshipSource;
using opc::model::SignatureCoverage;

constexpr const char* LIMITS =
    "No signature protects content types, but it names them, so that a change is seen; nor which of the\n"
    "covered sources a relationship belongs to.\n"
    "What belongs to the signatures themselves, a countersignature alone covers.\n"
    "A countersignature covers the content through the signatures that it covers.\n"
    "Whether the signatures hold, opctool verify says.\n";

std::set<std::string> toSet(const std::vector<std::u16string>& texts) {
    std::set<std::string> set;
    for (const std::u16string& text : texts)
        set.insert(toUDEString(text));
    return set;
}

/// The report over a package, row by row: there may be very many.
class Report {
public:
    /// @param itsPackage  must outlive this object
    explicit Report(SignedPackage& itsPackage)
        : package(itsPackage), managedNames(toSet(package.signatures().getManagedPartNames())),
          managedTypes(toSet(package.signatures().getManagedRelationshipTypes())) {
        const auto signatures = package.signatures().getSignatures();
        together = package.signatures().computeCoverage({signatures.begin(), signatures.end()});
        for (const DigitalSignature& signature : signatures)
            coverages.emplace_back(toUDEString(signature.getName()),
                                   SignatureCoverage(package.signatures(), signature));
    }

    using Visitor = std::function<void(const ordered_json& row)>;

    void forEachPart(const Visitor& visit) const {
        for (const Part& part : package->getParts())
            visit(describe(part.getName()));
    }

    void forEachRelationship(const Visitor& visit) const {
        const auto visitAll = [&](const RelationshipSource& source) {
            for (const Relationship& relationship : source.getRelationships())
                visit(describe(relationship));
        };
        visitAll(*package);
        for (const Part& part : package->getParts())
            visitAll(part);
    }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& coverage : coverages)
            names.push_back(coverage.first);
        return names;
    }

    const PackageCoverage& ofAll() const { return *together; }

private:
    template <typename Entity>
    ordered_json findSignatures(const Entity& entity) const {
        ordered_json names = ordered_json::array();
        for (const auto& [name, coverage] : coverages)
            if (coverage.covers(entity))
                names.push_back(name);
        return names;
    }

    ordered_json describe(const PartName& name) const {
        const std::string text = toUDEString(name.toString());
        ordered_json row{{"name", text},
                         {"signatures", findSignatures(name)},
                         {"ofSignatures", managedNames.count(text) != 0}};
        if (!row["signatures"].empty() && name.getURI() == opc::model::PackageHelper::getCorePropertiesURI())
            row["except"] = "the first <cp:keywords> element";
        return row;
    }

    ordered_json describe(const Relationship& relationship) const {
        const std::string type = toUDEString(relationship.getType());
        return {{"source", toUDEString(relationship.getSourceURI().toString())},
                {"id", toUDEString(relationship.getID())},
                {"type", type},
                {"signatures", findSignatures(relationship)},
                {"ofSignatures", managedTypes.count(type) != 0}};
    }

    SignedPackage& package;
    std::set<std::string> managedNames;
    std::set<std::string> managedTypes;
    std::optional<PackageCoverage> together; ///< of all signatures
    std::vector<std::pair<std::string, SignatureCoverage>> coverages;
};

/// The signatures of a part or relationship, and what else is to be said.
std::string describe(const ordered_json& row) {
    std::string text;
    for (const auto& name : row["signatures"])
        text += (text.empty() ? "" : ", ") + name.get<std::string>();
    if (text.empty())
        text = "none";
    if (row.contains("except"))
        text += ", but for " + row["except"].get<std::string>();
    return text + (row["ofSignatures"].get<bool>() ? " (belongs to the signatures)" : "");
}

void printTables(const Report& report) {
    const Table parts({{"PART"}, {"SIGNATURES"}});
    parts.print(std::cout, outputIsTerminal(), [&report](const auto& print) {
        report.forEachPart([&print](const ordered_json& row) { print({row["name"], describe(row)}); });
    });
    std::cout << '\n';
    const Table relationships({{"SOURCE"}, {"ID"}, {"SIGNATURES"}, {"TYPE"}});
    relationships.print(std::cout, outputIsTerminal(), [&report](const auto& print) {
        report.forEachRelationship([&print](const ordered_json& row) {
            print({row["source"], row["id"], describe(row), row["type"]});
        });
    });
    std::cout << '\n' << summarize(report.ofAll()) << LIMITS;
}

void printUncovered(JSONOutput& output, const Report& report) {
    const auto ifUncovered = [&output](const ordered_json& row, const ordered_json& shown) {
        if (row["signatures"].empty())
            output.add(shown);
    };
    output.beginObject("uncovered");
    output.beginArray("parts");
    report.forEachPart([&](const ordered_json& row) { ifUncovered(row, row["name"]); });
    output.end();
    output.beginArray("relationships");
    report.forEachRelationship([&](const ordered_json& row) {
        ifUncovered(row, {{"source", row["source"]}, {"id", row["id"]}});
    });
    output.end();
    output.add("all", "contentTypes");
    output.end();
}

void printJSON(const Report& report) {
    JSONOutput output(std::cout);
    const auto add = [&output](const ordered_json& row) { output.add(row); };
    output.beginObject();
    output.add(report.names(), "signatures");
    output.beginArray("parts");
    report.forEachPart(add);
    output.end();
    output.beginArray("relationships");
    report.forEachRelationship(add);
    output.end();
    printUncovered(output, report);
    output.beginObject("content");
    print(output, report.ofAll());
    output.end();
    output.end();
}

} // namespace

void addCoverageCommand(CLI::App& app) {
    struct Arguments {
        std::string package;
        bool json = false;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* command = app.add_subcommand(
        "coverage", "Tell for every part and relationship which signatures cover it, and what none covers.\n"
                    "A part is covered if its digest stands in what the signature value protects.\n" +
                        std::string(LIMITS) + "Exit status: 0 whatever the report says");
    command->add_option("PACKAGE", arguments->package, "The package's file")->required();
    command->add_flag("--json", arguments->json, "Print a JSON object");
    command->callback([arguments] {
        SignedPackage package(arguments->package, opc::interfaces::OpenMode::ReadOnly);
        const Report report(package);
        if (arguments->json)
            printJSON(report);
        else
            printTables(report);
    });
}

} // namespace opctool
