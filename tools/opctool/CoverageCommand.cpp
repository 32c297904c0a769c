#include "Commands.hpp"
#include "CoverageText.hpp"
#include "SignedPackage.hpp"
#include "Table.hpp"
#include "TerminalText.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/PackageCoverage.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/SignatureCoverage.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

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

/// Gathers the report over a package.
class Report {
public:
    explicit Report(SignedPackage& package)
        : managedNames(toSet(package.signatures().getManagedPartNames())),
          managedTypes(toSet(package.signatures().getManagedRelationshipTypes())) {
        const auto signatures = package.signatures().getSignatures();
        together = package.signatures().computeCoverage({signatures.begin(), signatures.end()});
        for (const DigitalSignature& signature : signatures)
            coverages.emplace_back(toUDEString(signature.getName()),
                                   SignatureCoverage(package.signatures(), signature));
        addRelationships(*package);
        for (const Part& part : package->getParts()) {
            addPart(part.getName());
            addRelationships(part);
        }
    }

    ordered_json toJSON() const {
        ordered_json names = ordered_json::array();
        for (const auto& coverage : coverages)
            names.push_back(coverage.first);
        return {
            {"signatures", names},
            {"parts", parts},
            {"relationships", relationships},
            {"uncovered",
             {{"parts", uncoveredParts}, {"relationships", uncoveredRelationships}, {"contentTypes", "all"}}},
            {"content", opctool::toJSON(*together)}};
    }

    std::string summary() const { return summarize(*together); }

private:
    static std::set<std::string> toSet(const std::vector<std::u16string>& texts) {
        std::set<std::string> set;
        for (const std::u16string& text : texts)
            set.insert(toUDEString(text));
        return set;
    }

    template <typename Entity>
    ordered_json findSignatures(const Entity& entity) const {
        ordered_json names = ordered_json::array();
        for (const auto& [name, coverage] : coverages)
            if (coverage.covers(entity))
                names.push_back(name);
        return names;
    }

    void addPart(const PartName& name) {
        const std::string text = toUDEString(name.toString());
        ordered_json row{{"name", text},
                         {"signatures", findSignatures(name)},
                         {"ofSignatures", managedNames.count(text) != 0}};
        if (row["signatures"].empty())
            uncoveredParts.push_back(text);
        else if (name.getURI() == opc::model::PackageHelper::getCorePropertiesURI())
            row["except"] = "the first <cp:keywords> element";
        parts.push_back(std::move(row));
    }

    void addRelationships(const RelationshipSource& source) {
        for (const Relationship& relationship : source.getRelationships()) {
            ordered_json row{{"source", toUDEString(relationship.getSourceURI().toString())},
                             {"id", toUDEString(relationship.getID())}};
            const std::string type = toUDEString(relationship.getType());
            const ordered_json signatures = findSignatures(relationship);
            if (signatures.empty())
                uncoveredRelationships.push_back(row);
            row["type"] = type;
            row["signatures"] = signatures;
            row["ofSignatures"] = managedTypes.count(type) != 0;
            relationships.push_back(std::move(row));
        }
    }

    std::set<std::string> managedNames;
    std::set<std::string> managedTypes;
    std::optional<PackageCoverage> together; ///< of all signatures
    std::vector<std::pair<std::string, SignatureCoverage>> coverages;
    ordered_json parts = ordered_json::array();
    ordered_json relationships = ordered_json::array();
    ordered_json uncoveredParts = ordered_json::array();
    ordered_json uncoveredRelationships = ordered_json::array();
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

void print(const ordered_json& report, const std::string& summary) {
    Table parts({{"PART"}, {"SIGNATURES"}});
    for (const auto& row : report["parts"])
        parts.addRow({row["name"], describe(row)});
    parts.print(std::cout, outputIsTerminal());
    std::cout << '\n';
    Table relationships({{"SOURCE"}, {"ID"}, {"SIGNATURES"}, {"TYPE"}});
    for (const auto& row : report["relationships"])
        relationships.addRow({row["source"], row["id"], describe(row), row["type"]});
    relationships.print(std::cout, outputIsTerminal());
    std::cout << '\n' << summary << LIMITS;
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
            std::cout << escapedJSON(report.toJSON().dump(2)) << '\n';
        else
            print(report.toJSON(), report.summary());
    });
}

} // namespace opctool
