#include "Commands.hpp"
#include "Files.hpp"
#include "OpenedPackage.hpp"
#include "PropertyFields.hpp"
#include "TerminalText.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/PackageHelper.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <map>
#include <string>

namespace opctool {

namespace {

using nlohmann::ordered_json;
using opc::toUDEString;
using opc::model::PackageHelper;
using opc::model::Part;
using opc::model::Relationship;
using opc::model::RelationshipSource;
using opc::model::TargetMode;

struct PartCount {
    std::uint64_t parts = 0;
    std::uint64_t size = 0;
};

struct RelationshipCount {
    std::uint64_t all = 0;
    std::uint64_t external = 0;
};

/// The sum over all parts, and the parts by content type.
ordered_json countParts(const opc::model::Package& package) {
    std::map<std::string, PartCount> byType;
    PartCount total;
    for (const Part& part : package.getParts()) {
        const std::uint64_t size = measure(part);
        for (PartCount* count : {&total, &byType[toUDEString(part.getContentType().toString())]}) {
            ++count->parts;
            count->size += size;
        }
    }
    ordered_json list = ordered_json::array();
    for (const auto& [type, count] : byType)
        list.push_back({{"contentType", type}, {"parts", count.parts}, {"size", count.size}});
    return {{"count", total.parts}, {"size", total.size}, {"byContentType", list}};
}

ordered_json countRelationships(const opc::model::Package& package) {
    std::map<std::string, RelationshipCount> byType;
    RelationshipCount total;
    const auto add = [&](const RelationshipSource& source) {
        for (const Relationship& relationship : source.getRelationships())
            for (RelationshipCount* count : {&total, &byType[toUDEString(relationship.getType())]}) {
                ++count->all;
                count->external += relationship.getTargetMode() == TargetMode::External ? 1 : 0;
            }
    };
    add(package);
    for (const Part& part : package.getParts())
        add(part);
    ordered_json list = ordered_json::array();
    while (!byType.empty()) { // types can be very long: none is kept twice
        auto node = byType.extract(byType.begin());
        ordered_json& row = list.emplace_back();
        row["type"] = std::move(node.key());
        row["count"] = node.mapped().all;
        row["external"] = node.mapped().external;
    }
    return {{"count", total.all}, {"external", total.external}, {"byType", list}};
}

ordered_json findThumbnails(const opc::model::Package& package) {
    ordered_json list = ordered_json::array();
    for (const Relationship& relationship :
         package.getRelationshipsByType(PackageHelper::getThumbnailRelationshipType()))
        list.push_back(toUDEString(relationship.getTargetMode() == TargetMode::Internal
                                       ? relationship.getTargetURI().toString()
                                       : relationship.getTarget()));
    return list;
}

ordered_json listIgnored(const OpenedPackage& package) {
    ordered_json list = ordered_json::array();
    for (const auto& item : package.ignoredItems())
        list.push_back({{"name", item.name}, {"reason", item.reason}, {"item", item.isItem}});
    return list;
}

ordered_json describePackage(FileRun& run) {
    OpenedPackage package(run, opc::interfaces::OpenMode::ReadOnly);
    ordered_json description = {{"file", run.path()},
                                {"size", package.size()},
                                {"parts", countParts(*package)},
                                {"relationships", countRelationships(*package)}};
    // An overview of a package whose properties are invalid is more useful than none.
    try {
        description["coreProperties"] = describeProperties(PackageHelper::getCoreProperties(*package));
    } catch (const opc::Exception& e) {
        description["coreProperties"] = nullptr;
        description["corePropertiesFailure"] = e.what();
    }
    description["thumbnails"] = findThumbnails(*package);
    description["ignored"] = listIgnored(package);
    return description;
}

/// 1234567 as 1,234,567.
std::string grouped(const ordered_json& number) {
    std::string digits = number.dump();
    for (std::size_t at = digits.size(); at > 3;)
        digits.insert(at -= 3, ",");
    return digits;
}

void printParts(FileRun& run, const ordered_json& parts) {
    run.out() << "\nParts: " << grouped(parts["count"]) << ", " << grouped(parts["size"]) << " bytes\n";
    Table table({{"PARTS", Table::Align::Right}, {"BYTES", Table::Align::Right}, {"CONTENT TYPE"}});
    for (const auto& row : parts["byContentType"])
        table.addRow({grouped(row["parts"]), grouped(row["size"]), row["contentType"]});
    table.print(run.out(), run.tableStyle());
}

void printRelationships(FileRun& run, const ordered_json& relationships) {
    run.out() << "\nRelationships: " << grouped(relationships["count"]) << ", "
              << grouped(relationships["external"]) << " of them external\n";
    Table table({{"COUNT", Table::Align::Right}, {"EXTERNAL", Table::Align::Right}, {"TYPE"}});
    for (const auto& row : relationships["byType"])
        table.addRow({grouped(row["count"]), grouped(row["external"]), row["type"]});
    table.print(run.out(), run.tableStyle());
}

void printCoreProperties(FileRun& run, const ordered_json& description) {
    const ordered_json& properties = description["coreProperties"];
    run.out() << "\nCore properties: " << properties.size() << '\n';
    if (description.contains("corePropertiesFailure"))
        run.out() << "can't be read: " << withoutControlCharacters(description["corePropertiesFailure"])
                  << '\n';
    else
        printProperties(run.out(), run.tableStyle(), properties);
}

void printIgnored(FileRun& run, const ordered_json& ignored) {
    run.out() << "\nIn the container beside parts: " << ignored.size() << '\n';
    Table table({{"NAME"}, {"REASON"}});
    for (const auto& item : ignored)
        table.addRow({item["name"], item["reason"]});
    table.print(run.out(), run.tableStyle());
}

void info(FileRun& run) {
    const ordered_json description = describePackage(run);
    if (run.wantsJSON()) {
        run.json().add(description);
        return;
    }
    if (!run.options().isOneOfMany)
        run.out() << withoutControlCharacters(run.path()) << ": ";
    run.out() << grouped(description["size"]) << " bytes\n";
    printParts(run, description["parts"]);
    printRelationships(run, description["relationships"]);
    run.out() << "\nThumbnails: " << description["thumbnails"].size() << '\n';
    for (const auto& name : description["thumbnails"])
        run.out() << withoutControlCharacters(name) << '\n';
    printCoreProperties(run, description);
    printIgnored(run, description["ignored"]);
}

void declareInfo(CLI::App& command) {
    const auto files = addFiles(command, INFO);
    command.callback([files] { files->run(info); });
}

} // namespace

const Command INFO{"info",
                   "Give an overview of a package",
                   declareInfo,
                   "",
                   "opctool info report.docx\n"
                   "opctool info *.docx --jsonl",
                   "",
                   R"({
  "type": "object",
  "required": ["file", "size", "parts", "relationships", "coreProperties", "thumbnails", "ignored"],
  "properties": {
    "file": {"type": "string"},
    "size": {"description": "of the archive, in bytes", "type": "integer"},
    "parts": {
      "type": "object",
      "required": ["count", "size", "byContentType"],
      "properties": {
        "count": {"type": "integer"},
        "size": {"description": "in bytes, uncompressed", "type": "integer"},
        "byContentType": {
          "type": "array",
          "items": {
            "type": "object",
            "required": ["contentType", "parts", "size"],
            "properties": {
              "contentType": {"type": "string"}, "parts": {"type": "integer"}, "size": {"type": "integer"}
            }
          }
        }
      }
    },
    "relationships": {
      "type": "object",
      "required": ["count", "external", "byType"],
      "properties": {
        "count": {"type": "integer"},
        "external": {"type": "integer"},
        "byType": {
          "type": "array",
          "items": {
            "type": "object",
            "required": ["type", "count", "external"],
            "properties": {
              "type": {"type": "string"}, "count": {"type": "integer"}, "external": {"type": "integer"}
            }
          }
        }
      }
    },
    "coreProperties": {"description": "as props gives them; null if they can't be read", "type": ["object", "null"]},
    "corePropertiesFailure": {"description": "why they can't be read", "type": "string"},
    "thumbnails": {"type": "array", "items": {"type": "string"}},
    "ignored": {
      "description": "what the container holds beside parts",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["name", "reason", "item"],
        "properties": {
          "name": {"type": "string"},
          "reason": {"type": "string"},
          "item": {"description": "false for bytes that belong to no item", "type": "boolean"}
        }
      }
    }
  }
})"};

} // namespace opctool
