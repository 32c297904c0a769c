#include "Commands.hpp"
#include "Messages.hpp"
#include "OpenedPackage.hpp"
#include "PropertyFields.hpp"
#include "RepeatableOption.hpp"
#include "TerminalText.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/PackageHelper.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace opctool {

namespace {

using opc::interfaces::OpenMode;
using opc::model::CoreProperties;
using opc::model::Package;
using opc::model::PackageHelper;
using opc::model::Part;

struct Arguments {
    PackageArgument package;
    bool json = false;
    bool clear = false;
    std::vector<std::string> unset;
    std::vector<std::string> set;
    std::vector<std::string> keywords;

    bool changes() const { return clear || !unset.empty() || !set.empty() || !keywords.empty(); }
};

bool hasCoreProperties(const Package& package) {
    return !package.getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType()).empty();
}

/// Some programs lead to their core properties by a relationship of another type than the standard's. Then the
/// package has none by the standard, and new ones are added beside those.
void warnOfCorePropertiesOutOfReach(const std::string& path, const Package& package) {
    if (hasCoreProperties(package))
        return;
    for (const Part& part : package.getParts())
        if (part.getContentType() == PackageHelper::getCorePropertiesContentType())
            tell(path,
                 "warning: " + opc::toUDEString(part.getName().toString()) +
                     " has the content type of core properties, but no relationship of their type leads "
                     "to it; it stays unchanged");
}

CoreProperties readStrictly(const Package& package) {
    try {
        return PackageHelper::getCoreProperties(package);
    } catch (opc::Exception& e) {
        if (PackageHelper::hasDanglingCoreProperties(package))
            e.addDetails("--lenient takes the package as one without them");
        throw;
    }
}

/// None if their relationship leads to no part; prints what is missing and what is done about it. In strict mode that
/// is a failure.
CoreProperties read(const PackageArgument& argument, const Package& package, const std::string& done) {
    if (argument.strict || !PackageHelper::hasDanglingCoreProperties(package))
        return readStrictly(package);
    const auto dangling =
        *package.getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType()).begin();
    tell(argument.path, "/_rels/.rels#" + opc::toUDEString(dangling.getID()) +
                            ": the core properties relationship leads to no part: " +
                            opc::toUDEString(dangling.getTarget()) + "; " + done);
    return {};
}

void write(const PackageArgument& argument, Package& package, const CoreProperties& properties) {
    if (argument.strict)
        PackageHelper::createOrUpdateCoreProperties(package, properties);
    else
        PackageHelper::mendCoreProperties(package, properties);
}

void print(const Arguments& arguments) {
    OpenedPackage package(arguments.package, OpenMode::ReadOnly);
    warnOfCorePropertiesOutOfReach(arguments.package.path, *package);
    const nlohmann::json description = describe(read(arguments.package, *package, "there are none"));
    if (arguments.json)
        std::cout << escapedJSON(description.dump(2)) << '\n';
    else
        printProperties(description);
}

void change(const Arguments& arguments) {
    OpenedPackage package(arguments.package, OpenMode::ReadWrite);
    warnOfCorePropertiesOutOfReach(arguments.package.path, *package);
    CoreProperties properties;
    if (!arguments.clear) // old ones that will be dropped need not be readable
        properties = read(arguments.package, *package, "new ones are written");
    for (const std::string& name : arguments.unset)
        unset(properties, name);
    for (const std::string& assignment : arguments.set)
        assign(properties, assignment);
    if (!arguments.keywords.empty()) {
        CoreProperties::KeywordList keywords;
        std::transform(arguments.keywords.begin(), arguments.keywords.end(), std::back_inserter(keywords),
                       parseKeyword);
        properties.setKeywords(keywords);
    }
    if (properties.isEmpty() && !hasCoreProperties(*package))
        return;
    write(arguments.package, *package, properties);
    package.save();
}

} // namespace

void addPropertyCommands(CLI::App& app) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* command = app.add_subcommand("props", "Print the core properties, or change them");
    addPackage(*command, arguments->package);
    CLI::Option* json = command->add_flag("--json", arguments->json, "Print a JSON object");
    command->add_flag("--clear", arguments->clear, "First drop all properties")->excludes(json);
    addRepeatable(command, "--unset", arguments->unset, "NAME: drop one property; done before --set")
        ->check(checkProperty)
        ->excludes(json);
    addRepeatable(command, "--set", arguments->set,
                  "NAME=VALUE: set one property. A time is \"now\", or has a W3CDTF form (2024, 2024-02-29, "
                  "2024-02-29T13:45:59+01:00 …)")
        ->check(checkAssignment)
        ->excludes(json);
    addRepeatable(command, "--keyword", arguments->keywords,
                  "TEXT or TEXT:LANGUAGE: a keyword. The given keywords replace all old ones. "
                  "Write a colon at the end if TEXT has a colon and no language")
        ->excludes(json);
    command->callback([arguments] { arguments->changes() ? change(*arguments) : print(*arguments); });
}

} // namespace opctool
