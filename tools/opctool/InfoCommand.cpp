#include "Commands.hpp"
#include "OpenedPackage.hpp"
#include "PropertyFields.hpp"
#include "Table.hpp"
#include "TerminalText.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/PackageHelper.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
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
    for (const auto& [type, count] : byType)
        list.push_back({{"type", type}, {"count", count.all}, {"external", count.external}});
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

ordered_json describePackage(const PackageArgument& argument) {
    OpenedPackage package(argument, opc::interfaces::OpenMode::ReadOnly);
    ordered_json description = {{"file", argument.path},
                                {"size", std::filesystem::file_size(argument.path)},
                                {"parts", countParts(*package)},
                                {"relationships", countRelationships(*package)}};
    // An overview of a package whose properties are invalid is more useful than none.
    try {
        description["coreProperties"] = describe(PackageHelper::getCoreProperties(*package));
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

void printParts(const ordered_json& parts) {
    std::cout << "\nParts: " << grouped(parts["count"]) << ", " << grouped(parts["size"]) << " bytes\n";
    Table table({{"PARTS", Table::Align::Right}, {"BYTES", Table::Align::Right}, {"CONTENT TYPE"}});
    for (const auto& row : parts["byContentType"])
        table.addRow({grouped(row["parts"]), grouped(row["size"]), row["contentType"]});
    table.print(std::cout, outputIsTerminal());
}

void printRelationships(const ordered_json& relationships) {
    std::cout << "\nRelationships: " << grouped(relationships["count"]) << ", "
              << grouped(relationships["external"]) << " of them external\n";
    Table table({{"COUNT", Table::Align::Right}, {"EXTERNAL", Table::Align::Right}, {"TYPE"}});
    for (const auto& row : relationships["byType"])
        table.addRow({grouped(row["count"]), grouped(row["external"]), row["type"]});
    table.print(std::cout, outputIsTerminal());
}

void printCoreProperties(const ordered_json& description) {
    const ordered_json& properties = description["coreProperties"];
    std::cout << "\nCore properties: " << properties.size() << '\n';
    if (description.contains("corePropertiesFailure"))
        std::cout << "can't be read: " << withoutControlCharacters(description["corePropertiesFailure"])
                  << '\n';
    else
        printProperties(properties);
}

void printIgnored(const ordered_json& ignored) {
    std::cout << "\nIn the container beside parts: " << ignored.size() << '\n';
    Table table({{"NAME"}, {"REASON"}});
    for (const auto& item : ignored)
        table.addRow({item["name"], item["reason"]});
    table.print(std::cout, outputIsTerminal());
}

void info(const PackageArgument& argument, bool asJSON) {
    const ordered_json description = describePackage(argument);
    if (asJSON) {
        std::cout << escapedJSON(description.dump(2)) << '\n';
        return;
    }
    std::cout << withoutControlCharacters(argument.path) << ": " << grouped(description["size"])
              << " bytes\n";
    printParts(description["parts"]);
    printRelationships(description["relationships"]);
    std::cout << "\nThumbnails: " << description["thumbnails"].size() << '\n';
    for (const auto& name : description["thumbnails"])
        std::cout << withoutControlCharacters(name) << '\n';
    printCoreProperties(description);
    printIgnored(description["ignored"]);
}

} // namespace

void addInfoCommand(CLI::App& app) {
    struct Arguments {
        PackageArgument package;
        bool json = false;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* command = app.add_subcommand("info", "Give an overview of a package");
    addPackage(*command, arguments->package);
    command->add_flag("--json", arguments->json, "Print a JSON object");
    command->callback([arguments] { info(arguments->package, arguments->json); });
}

} // namespace opctool
