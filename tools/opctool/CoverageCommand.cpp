#include "Commands.hpp"
#include "CoverageText.hpp"
#include "Files.hpp"
#include "SignedPackage.hpp"
#include "SourceNames.hpp"
#include "StandardCoverage.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/PackageCoverage.hpp>
#include <opc/model/PackageHelper.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <optional>
#include <set>
#include <string>
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

constexpr const char* LIMITS =
    "No signature protects content types, but it names them, so a change is reported. Nor does a signature\n"
    "protect which of the covered sources a relationship belongs to.\n"
    "Only a countersignature covers the parts and relationships of the signatures themselves. It covers\n"
    "the content through the signatures that it covers.\n"
    "opctool verify says whether the signatures hold.\n";

std::set<std::string> toSet(const std::vector<std::u16string>& texts) {
    std::set<std::string> set;
    for (const std::u16string& text : texts)
        set.insert(toUDEString(text));
    return set;
}

/// A small package can have very many signatures over very many relationships. The report names no more.
constexpr std::size_t MAXIMUM_NAMES = 2000000;

/// The report on a package, row by row, because there may be very many rows.
class CoverageReport {
public:
    /// @param package  must outlive this object
    explicit CoverageReport(SignedPackage& package)
        : package(package), managedNames(toSet(package.signatures().getManagedPartNames())),
          managedTypes(toSet(package.signatures().getManagedRelationshipTypes())) {
        const auto signatures = package.signatures().getSignatures();
        together = package.signatures().computeCoverage({signatures.begin(), signatures.end()});
        for (const DigitalSignature& signature : signatures)
            signatureNames.push_back(toUDEString(signature.getName()));
        refuseTooLongNames();
        refuseTooManyNames();
    }

    template <typename Visitor>
    void forEachPart(const Visitor& visit) const {
        for (const Part& part : package->getParts())
            visit(part.getName());
    }

    template <typename Visitor>
    void forEachRelationship(const Visitor& visit) const {
        forEachSource([&visit](const RelationshipSource& source) {
            for (const Relationship& relationship : source.getRelationships())
                visit(relationship);
        });
    }

    template <typename Entity>
    bool isCovered(const Entity& entity) const {
        return !together->findSignatures(entity).empty();
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

    const std::vector<std::string>& names() const { return signatureNames; }

    const PackageCoverage& ofAll() const { return *together; }

private:
    template <typename Visitor>
    void forEachSource(const Visitor& visit) const {
        visit(*package);
        for (const Part& part : package->getParts())
            visit(part);
    }

    void refuseTooLongNames() const {
        SourceNames sources;
        forEachSource([&sources](const RelationshipSource& source) { sources.add(source); });
    }

    void refuseTooManyNames() const {
        std::size_t count = 0;
        const auto add = [&](const auto& entity) {
            count += together->findSignatures(entity).size();
            if (count > MAXIMUM_NAMES)
                throw opc::Exception(
                    "The report would name signatures more than 2000000 times. opctool verify "
                    "lists what no signature covers.");
        };
        forEachPart(add);
        forEachRelationship(add);
    }

    template <typename Entity>
    ordered_json findSignatures(const Entity& entity) const {
        ordered_json names = ordered_json::array();
        for (const std::size_t place : together->findSignatures(entity))
            names.push_back(signatureNames[place]);
        return names;
    }

    SignedPackage& package;
    std::set<std::string> managedNames;
    std::set<std::string> managedTypes;
    std::optional<PackageCoverage> together; ///< the coverage of all signatures together
    std::vector<std::string> signatureNames;
};

/// The signatures of a part or relationship, and further remarks.
std::string describe(const ordered_json& row) {
    std::string text;
    for (const auto& name : row["signatures"])
        text += (text.empty() ? "" : ", ") + name.get<std::string>();
    if (text.empty())
        text = "none";
    if (row.contains("except"))
        text += ", except " + row["except"].get<std::string>();
    return text + (row["ofSignatures"].get<bool>() ? " (belongs to the signatures)" : "");
}

void printTables(FileRun& run, const CoverageReport& report) {
    const Table parts({{"PART"}, {"SIGNATURES"}});
    parts.print(run.out(), run.tableStyle(), [&report](const auto& print) {
        report.forEachPart([&](const PartName& name) {
            const ordered_json row = report.describe(name);
            print({row["name"], describe(row)});
        });
    });
    run.out() << '\n';
    const Table relationships({{"SOURCE"}, {"ID"}, {"SIGNATURES"}, {"TYPE"}});
    relationships.print(run.out(), run.tableStyle(), [&report](const auto& print) {
        report.forEachRelationship([&](const Relationship& relationship) {
            const ordered_json row = report.describe(relationship);
            print({row["source"], row["id"], describe(row), row["type"]});
        });
    });
    run.out() << '\n' << summarize(report.ofAll());
    if (!run.options().isOneOfMany) // once is enough
        run.out() << LIMITS;
}

void printUncovered(JSONOutput& output, const CoverageReport& report) {
    output.beginObject("uncovered");
    output.beginArray("parts");
    report.forEachPart([&](const PartName& name) {
        if (!report.isCovered(name))
            output.add(toUDEString(name.toString()));
    });
    output.end();
    output.beginArray("relationships");
    report.forEachRelationship([&](const Relationship& relationship) {
        if (!report.isCovered(relationship))
            output.add({{"source", toUDEString(relationship.getSourceURI().toString())},
                        {"id", toUDEString(relationship.getID())}});
    });
    output.end();
    output.add("all", "contentTypes");
    output.end();
}

/// Adds the members of the report to the object that was begun last.
void printMembers(JSONOutput& output, const CoverageReport& report) {
    const auto add = [&](const auto& entity) { output.add(report.describe(entity)); };
    output.add("opcmodel", "profile");
    output.add(report.names(), "signatures");
    output.beginArray("parts");
    report.forEachPart(add);
    output.end();
    output.beginArray("relationships");
    report.forEachRelationship(add);
    output.end();
    printUncovered(output, report);
    output.beginObject("content");
    printCoverage(output, report.ofAll());
    output.end();
}

void printBoth(FileRun& run, const CoverageReport& own, SignedPackage& package, bool hasStandard) {
    if (!run.wantsJSON()) {
        printTables(run, own);
        if (hasStandard) {
            run.out() << '\n';
            printCoverage(run, tabulate(package.closeUnchanged()));
        }
        return;
    }
    JSONOutput& output = run.json();
    output.beginObject();
    printMembers(output, own);
    if (hasStandard) {
        output.beginObject("standard");
        printCoverage(output, tabulate(package.closeUnchanged()));
        output.end();
    }
    output.end();
}

void printStandard(FileRun& run, PackageFile& file) {
    const auto table = tabulate(file);
    if (!run.wantsJSON()) {
        printCoverage(run, table);
        return;
    }
    run.json().beginObject();
    printCoverage(run.json(), table);
    run.json().end();
}

void coverage(FileRun& run) {
    SignedPackage package(run, opc::interfaces::OpenMode::ReadOnly);
    const CoverageReport own(package);
    const bool hasStandard = package.hasStandardSignatures();
    if (hasStandard && own.names().empty())
        printStandard(run, package.closeUnchanged());
    else
        printBoth(run, own, package, hasStandard);
}

void declareCoverage(CLI::App& command) {
    const auto files = addFiles(command, COVERAGE);
    command.callback([files] { files->run(coverage); });
}

} // namespace

const Command COVERAGE{
    "coverage",
    "List the signatures that cover each part and relationship, and what none covers",
    declareCoverage,
    "A package of an office program has signatures in the standard's profile; a broken one covers nothing "
    "there. What "
    "follows is about the library's own profile. A part is covered if the signature value protects its "
    "digest. No signature protects content "
    "types, but it names them, so a change is reported. Nor does a signature protect which of the "
    "covered sources a relationship belongs to. Only a countersignature covers the parts and "
    "relationships of the signatures themselves. It covers the content through the signatures "
    "that it covers. opctool verify says whether the signatures hold.",
    "opctool coverage report.docx",
    "0 whatever the report says, 3 failure",
    R"({
  "type": "object",
  "required": ["profile", "signatures", "parts", "relationships", "uncovered", "content"],
  "properties": {
    "profile": {"enum": ["opcmodel", "standard"]},
    "standard": {"description": "of a package with signatures in both profiles", "$ref": "#/properties/result"},
    "signatures": {"description": "their names", "type": "array", "items": {"type": "string"}},
    "parts": {
      "type": "array",
      "items": {
        "type": "object",
        "required": ["name", "signatures", "ofSignatures"],
        "properties": {
          "name": {"type": "string"},
          "signatures": {"type": "array", "items": {"type": "string"}},
          "ofSignatures": {"description": "whether the part belongs to the signatures", "type": "boolean"},
          "byCustom": {"description": "whether signing programs leave it out, in the standard's profile", "type": "boolean"},
          "except": {"description": "what of it isn't covered", "type": "string"}
        }
      }
    },
    "relationships": {
      "type": "array",
      "items": {
        "type": "object",
        "required": ["source", "id", "type", "signatures", "ofSignatures"],
        "properties": {
          "source": {"type": "string"}, "id": {"type": "string"}, "type": {"type": "string"},
          "signatures": {"type": "array", "items": {"type": "string"}}, "ofSignatures": {"type": "boolean"},
          "byCustom": {"type": "boolean"}
        }
      }
    },
    "uncovered": {
      "type": "object",
      "required": ["parts", "relationships", "contentTypes"],
      "properties": {
        "parts": {"type": "array", "items": {"type": "string"}},
        "relationships": {"$ref": "#/properties/result/properties/content/properties/uncoveredRelationships"},
        "contentTypes": {"description": "signed: those of the signed parts are, in the standard's profile", "enum": ["all", "signed"]}
      }
    },
    "content": {
      "description": "without the parts and relationships of the signatures",
      "type": "object",
      "required": ["uncoveredParts", "uncoveredRelationships", "changedContentTypes", "ignored", "keywords", "full"],
      "properties": {
        "uncoveredParts": {"type": "array", "items": {"type": "string"}},
        "uncoveredRelationships": {
          "type": "array",
          "items": {
            "type": "object",
            "required": ["source", "id"],
            "properties": {"source": {"type": "string"}, "id": {"type": "string"}}
          }
        },
        "changedContentTypes": {
          "type": "array",
          "items": {
            "type": "object",
            "required": ["part", "contentType", "signedAs"],
            "properties": {
              "part": {"type": "string"}, "contentType": {"type": "string"}, "signedAs": {"type": "string"}
            }
          }
        },
        "ignored": {
          "type": "array",
          "items": {
            "type": "object",
            "required": ["name", "reason"],
            "properties": {"name": {"type": "string"}, "reason": {"type": "string"}}
          }
        },
        "keywords": {
          "type": "object",
          "required": ["begin", "size"],
          "properties": {"begin": {"type": "integer"}, "size": {"type": "integer"}}
        },
        "full": {"type": "boolean"}
      }
    }
  }
})"};

} // namespace opctool
