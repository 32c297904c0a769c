#include "ChangeText.hpp"
#include "Commands.hpp"
#include "EditedPackage.hpp"
#include "Files.hpp"
#include "OfficeProperties.hpp"
#include "PropertyFields.hpp"
#include "RepeatableOption.hpp"
#include "SignatureOption.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/editing/CorePropertyChanges.hpp>
#include <opc/model/PackageHelper.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace opctool {

namespace {

using opc::editing::PropertyKind;
using opc::interfaces::OpenMode;
using opc::model::CoreProperties;
using opc::model::Package;
using opc::model::PackageHelper;
using opc::model::Part;

struct PropertyArguments {
    bool clear = false;
    std::vector<std::string> unset;
    std::vector<std::string> set;
    std::vector<std::string> keywords;
    std::string type;
    bool areCustom = false;
    bool areExtended = false;
    bool areLabels = false;

    bool changes() const { return clear || !unset.empty() || !set.empty() || !keywords.empty(); }
    bool areOffice() const { return areCustom || areExtended || areLabels; }
    PropertyKind kind() const { return areCustom ? PropertyKind::Custom : PropertyKind::Extended; }

    /// @throws CLI::ValidationError  what is to be changed can't be
    void check() const;
};

void require(const char* option, const std::string& problem) {
    if (!problem.empty())
        throw CLI::ValidationError(option, problem);
}

void PropertyArguments::check() const {
    require("--labels", areLabels && changes() ? "labels can only be read" : "");
    require("--keyword", areOffice() && !keywords.empty() ? "it is for core properties" : "");
    require("--type", !areCustom && !type.empty() ? "it is for custom properties" : "");
    if (areOffice())
        return;
    for (const std::string& name : unset)
        require("--unset", checkProperty(name));
    for (const std::string& assignment : set)
        require("--set", checkAssignment(assignment));
}

bool hasCoreProperties(const Package& package) {
    return !package.getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType()).empty();
}

/// Some programs lead to their core properties by a relationship of another type than the standard's. Then the
/// package has none by the standard, and new ones are added beside those.
void warnOfCorePropertiesOutOfReach(FileRun& run, const Package& package) {
    if (hasCoreProperties(package))
        return;
    for (const Part& part : package.getParts())
        if (part.getContentType() == PackageHelper::getCorePropertiesContentType())
            run.remark("warning: " + opc::toUDEString(part.getName().toString()) +
                       " has the content type of core properties, but no relationship of their type leads "
                       "to it; it stays unchanged");
}

/// Tells of a relationship to core properties that leads to no part, and what is done about it. In strict mode that is a
/// failure.
/// @return whether there is one
bool tellOfDangling(FileRun& run, const Package& package, const std::string& done) {
    if (!PackageHelper::hasDanglingCoreProperties(package))
        return false;
    if (run.options().reading.strict) {
        try {
            PackageHelper::getCoreProperties(package);
        } catch (opc::Exception& e) {
            e.addDetails("--lenient takes the package as one without them");
            throw;
        }
    }
    const auto dangling =
        *package.getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType()).begin();
    run.report(
        {{"", u"/_rels/.rels#" + dangling.getID(), 0,
          "the core properties relationship leads to no part: " + opc::toUDEString(dangling.getTarget()),
          done}});
    return true;
}

void printCore(FileRun& run) {
    OpenedPackage package(run, OpenMode::ReadOnly);
    warnOfCorePropertiesOutOfReach(run, *package);
    const bool isDangling = tellOfDangling(run, *package, "there are none");
    const nlohmann::json description =
        describeProperties(isDangling ? CoreProperties() : PackageHelper::getCoreProperties(*package));
    if (run.wantsJSON())
        run.json().add(description);
    else
        printProperties(run.out(), run.tableStyle(), description);
}

void print(FileRun& run, const PropertyArguments& arguments) {
    if (arguments.areLabels)
        printLabels(run);
    else if (arguments.areOffice())
        printOfficeProperties(run, arguments.kind());
    else
        printCore(run);
}

void changeCore(FileRun& run, const PropertyArguments& arguments) {
    EditedPackage package(run);
    warnOfCorePropertiesOutOfReach(run, *package);
    if (!arguments.clear ||
        run.options().reading.strict) // old ones that will be dropped need not be readable
        tellOfDangling(run, *package, "new ones are written");
    opc::editing::CorePropertyChanges changes;
    changes.clear = arguments.clear;
    changes.unset = arguments.unset;
    std::transform(arguments.set.begin(), arguments.set.end(), std::back_inserter(changes.set),
                   splitAssignment);
    if (!arguments.keywords.empty()) {
        CoreProperties::KeywordList& keywords = changes.keywords.emplace();
        std::transform(arguments.keywords.begin(), arguments.keywords.end(), std::back_inserter(keywords),
                       parseKeyword);
    }
    changeCoreProperties(package.editor(), changes);
    package.finish();
}

void change(FileRun& run, const PropertyArguments& arguments) {
    if (arguments.areOffice())
        changeOfficeProperties(run, arguments.kind(),
                               {arguments.clear, arguments.unset, arguments.set, arguments.type});
    else
        changeCore(run, arguments);
}

void declareKinds(CLI::App& command, PropertyArguments& arguments) {
    CLI::Option* const custom = command.add_flag(
        "--custom", arguments.areCustom, "Those that people and systems have added, with their types");
    CLI::Option* const extended = command.add_flag("--extended", arguments.areExtended,
                                                   "What the program tells of itself and of the document");
    command
        .add_flag("--labels", arguments.areLabels,
                  "Sensitivity labels, which are among the custom properties")
        ->excludes(custom)
        ->excludes(extended);
    custom->excludes(extended);
}

void declareProperty(CLI::App& command) {
    const auto arguments = std::make_shared<PropertyArguments>();
    const auto files = addFiles(command, PROPS);
    addTarget(command, files->options);
    addDryRun(command, files->options);
    addSignatureOption(command, files->options);
    declareKinds(command, *arguments);
    const char* const group = "Changes, to one package";
    std::vector<CLI::Option*> changes{
        command.add_flag("--clear", arguments->clear, "First drop all properties"),
        addRepeatable(&command, "--unset", arguments->unset, "Drop one property; done before --set")
            ->type_name("NAME"),
        addRepeatable(
            &command, "--set", arguments->set,
            "Set one property. A time of core properties is \"now\", or has a W3CDTF form (2024, 2024-02-29, "
            "2024-02-29T13:45:59+01:00 …); that of custom ones has the last form")
            ->type_name("NAME=VALUE"),
        command
            .add_option(
                "--type", arguments->type,
                "The type of custom properties that are set: lpwstr, i4, r8, bool, filetime …; without it, "
                "the old one, or lpwstr, which is text")
            ->type_name("TYPE"),
        addRepeatable(&command, "--keyword", arguments->keywords,
                      "A keyword. The given keywords replace all old ones. Write a colon at the end if TEXT "
                      "has a colon and no language")
            ->type_name("TEXT[:LANGUAGE]")};
    for (CLI::Option* change : changes)
        change->group(group);
    command.callback([files, arguments] {
        arguments->check();
        files->options.isChange = arguments->changes();
        if (files->options.isChange)
            files->requireOne("a change");
        else if (!files->options.target.empty())
            throw CLI::ValidationError("--output", "is for a change");
        else if (files->options.dryRun || files->options.breakSignatures)
            throw CLI::ValidationError(files->options.dryRun ? "--dry-run" : "--break-signatures",
                                       "is for a change");
        files->run([&arguments](FileRun& run) {
            arguments->changes() ? change(run, *arguments) : print(run, *arguments);
        });
    });
}

/// What is read, or how a change goes.
const std::string RESULT_SCHEMA = R"({
  "anyOf": [
    {
      "type": "object",
      "description": "the properties that are present",
      "properties": {
        "category": {"type": "string"}, "contentStatus": {"type": "string"}, "created": {"type": "string"},
        "creator": {"type": "string"}, "description": {"type": "string"}, "identifier": {"type": "string"},
        "keywords": {
          "type": "array",
          "items": {
            "type": "object",
            "required": ["text"],
            "properties": {"text": {"type": "string"}, "language": {"type": "string"}}
          }
        },
        "language": {"type": "string"}, "lastModifiedBy": {"type": "string"}, "lastPrinted": {"type": "string"},
        "modified": {"type": "string"}, "revision": {"type": "string"}, "subject": {"type": "string"},
        "title": {"type": "string"}, "version": {"type": "string"}
      }
    },
    {
      "type": "array",
      "description": "custom or extended properties",
      "items": {
        "type": "object",
        "required": ["name", "type", "value"],
        "properties": {
          "name": {"type": "string"},
          "type": {"description": "as the variant types call it: lpwstr, i4, bool, vector …", "type": "string"},
          "value": {"type": "string"},
          "items": {"description": "of a list", "type": "array"},
          "linkTarget": {"description": "the place in the document that it comes from", "type": "string"}
        }
      }
    },
    {
      "type": "array",
      "description": "sensitivity labels",
      "items": {
        "type": "object",
        "required": ["label", "settings"],
        "properties": {
          "label": {"description": "its id", "type": "string"},
          "settings": {"type": "object", "additionalProperties": {"type": "string"}}
        }
      }
    },
)" + std::string(CHANGES_SCHEMA) + "]}";

} // namespace

const Command PROPS{"props",
                    "Print core, custom or extended properties, or change them",
                    declareProperty,
                    "",
                    "opctool props report.docx\n"
                    "opctool props report.docx --set title='The report' --set modified=now\n"
                    "opctool props report.docx --clear -o clean.docx\n"
                    "opctool props report.docx --custom --set Approved=true --type bool",
                    "",
                    RESULT_SCHEMA.c_str()};

} // namespace opctool
