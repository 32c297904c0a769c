#include "Commands.hpp"
#include "Envelope.hpp"
#include "Files.hpp"
#include "OpenedPackage.hpp"
#include "RepeatableOption.hpp"
#include "SignedPackage.hpp"
#include "SigningMaterial.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PackageCoverage.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace opctool {

namespace {

using opc::interfaces::OpenMode;
using opc::model::DigitalSignature;
using opc::model::DigitalSignatureManager;
using opc::model::ExcludeMode;
using opc::model::Package;
using opc::model::PackageCoverage;
using opc::model::Part;
using opc::model::PartName;
using opc::model::Relationship;
using opc::model::RelationshipSelector;
using opc::model::RelationshipSelectorType;
using opc::model::RelationshipSource;
using opc::model::URI;

/// What is to be signed.
struct Selection {
    std::vector<PartName> parts;
    std::vector<RelationshipSelector> selectors;
};

struct SignArguments {
    SigningArguments signing;
    std::vector<std::string> parts;
    std::vector<std::string> relationships;
    std::vector<std::string> relationshipTypes;

    bool selectsAll() const { return parts.empty() && relationships.empty() && relationshipTypes.empty(); }
};

/// Everything except the signatures themselves; relationships are selected by their types.
Selection selectAll(const Package& package) {
    Selection selection;
    const auto select = [&selection](const RelationshipSource& source) {
        std::vector<std::u16string> types;
        for (const Relationship& relationship : source.getRelationships(ExcludeMode::ExcludeManaged)) {
            const std::u16string type = relationship.getType();
            if (std::find(types.begin(), types.end(), type) != types.end())
                continue;
            types.push_back(type);
            selection.selectors.emplace_back(relationship.getSourceURI(),
                                             RelationshipSelectorType::SourceType, type);
        }
    };
    for (const Part& part : package.getParts(ExcludeMode::ExcludeManaged)) {
        selection.parts.push_back(part.getName());
        select(part);
    }
    select(package);
    return selection;
}

std::string checkSelector(const std::string& argument) {
    const bool isSound = !argument.empty() && argument.front() == '/' &&
                         argument.find(':') != std::string::npos && argument.back() != ':';
    return isSound ? "" : "Write SOURCE:VALUE; SOURCE begins with a slash";
}

/// The end of SOURCE in SOURCE:TYPE. Both can have colons: SOURCE is the shortest one that the package has.
std::size_t findEndOfSource(const Package& package, const std::string& argument) {
    const std::string names = argument.substr(0, argument.find("//")); // two slashes end a part name
    for (std::size_t colon = names.find(':'); colon != std::string::npos; colon = names.find(':', colon + 1))
        if (colon == 1 || package.hasPart(PartName(fromArgument(names.substr(0, colon)))))
            return colon;
    throw opc::Exception("The package has no part for the source in " + argument);
}

RelationshipSelector makeSelector(const std::string& argument, std::size_t colon,
                                  RelationshipSelectorType type) {
    return RelationshipSelector(URI(fromArgument(argument.substr(0, colon))), type,
                                fromArgument(argument.substr(colon + 1)));
}

/// Signing adds a relationship of such a type, so a signature over all of that type would be broken at once.
void throwIfOfSignatures(const RelationshipSelector& selector, const DigitalSignatureManager& signatures) {
    const auto types = signatures.getManagedRelationshipTypes();
    if (std::find(types.begin(), types.end(), selector.getSelectionCriteria()) != types.end())
        throw opc::Exception("The relationships of signatures can't be signed by type; use countersign to "
                             "sign them");
}

Selection select(const SignArguments& arguments, const Package& package,
                 const DigitalSignatureManager& signatures) {
    if (arguments.selectsAll())
        return selectAll(package);
    Selection selection;
    for (const std::string& name : arguments.parts)
        selection.parts.emplace_back(fromArgument(name));
    for (const std::string& argument : arguments.relationships) // IDs have no colon
        selection.selectors.push_back(
            makeSelector(argument, argument.rfind(':'), RelationshipSelectorType::SourceId));
    for (const std::string& argument : arguments.relationshipTypes) {
        selection.selectors.push_back(
            makeSelector(argument, findEndOfSource(package, argument), RelationshipSelectorType::SourceType));
        throwIfOfSignatures(selection.selectors.back(), signatures);
    }
    return selection;
}

/// What no signature can cover, on one line; empty if there is nothing.
std::string describeIgnored(const PackageCoverage& coverage) {
    constexpr std::size_t TOLD = 5; // a small package can hold very many
    const auto& items = coverage.getIgnoredItems();
    std::string text;
    for (std::size_t i = 0; i < std::min(items.size(), TOLD); ++i)
        text += (i == 0 ? "" : "; ") + opc::toUDEString(items[i].name) + ": " + items[i].reason;
    if (items.size() > TOLD)
        text += "; and " + std::to_string(items.size() - TOLD) + " more";
    return text;
}

void sign(FileRun& run, const SignArguments& arguments) {
    const SigningMaterial material(arguments.signing);
    SignedPackage package(run, OpenMode::ReadWrite);
    DigitalSignatureManager& signatures = package.signatures();
    const Selection selection = select(arguments, *package, signatures);
    const DigitalSignature signature = material.apply([&](const auto&... signer) {
        return signatures.sign(selection.parts, selection.selectors, signer...);
    });
    const bool breaksCountersignature = signatures.isPackageCountersigned();
    const bool carriesForeign = signatures.hasForeignSignatures();
    const std::string ignored = describeIgnored(signatures.computeCoverage({signature}));
    package.save();
    if (!ignored.empty())
        run.tell("warning: no signature covers what other programs may read: " + ignored);
    if (breaksCountersignature)
        run.tell("warning: the countersignature doesn't hold any more");
    if (carriesForeign)
        run.tell("warning: the package has signatures in another form, which aren't read: they may not hold "
                 "any more");
    run.printName(opc::toUDEString(signature.getName()));
}

void countersign(FileRun& run, const SignArguments& arguments) {
    const SigningMaterial material(arguments.signing);
    SignedPackage package(run, OpenMode::ReadWrite);
    const DigitalSignature signature = material.apply(
        [&](const auto&... signer) { return package.signatures().countersignAllSignatures(signer...); });
    package.save();
    run.printName(opc::toUDEString(signature.getName()));
}

struct UnsignArguments {
    std::string name;
    bool all = false;
    bool countersignature = false;
};

void unsign(FileRun& run, const UnsignArguments& arguments) {
    SignedPackage package(run, OpenMode::ReadWrite);
    DigitalSignatureManager& signatures = package.signatures();
    if (arguments.all) {
        signatures.discardSignatures();
    } else if (arguments.countersignature) {
        signatures.removeCountersignature();
    } else {
        const DigitalSignature signature = signatures.getSignature(fromArgument(arguments.name));
        if (signatures.isPackageCountersigned() &&
            signature.getName() != signatures.getCountersignature().getName())
            throw opc::Exception("A countersignature needs " + arguments.name +
                                 "; remove it first with --countersignature");
        signatures.removeSignature(signature);
    }
    package.save();
}

void declareSign(CLI::App& command) {
    const auto arguments = std::make_shared<SignArguments>();
    const auto files = addChangedFile(command, SIGN);
    addSigningOptions(command, arguments->signing);
    const char* const group = "What is signed; without these options, everything";
    addRepeatable(&command, "--part", arguments->parts, "A part's name")->type_name("NAME")->group(group);
    addRepeatable(&command, "--relationship", arguments->relationships,
                  "One relationship; SOURCE is a part name, or \"/\" for the package")
        ->check(checkSelector)
        ->type_name("SOURCE:ID")
        ->group(group);
    addRepeatable(&command, "--relationship-type", arguments->relationshipTypes,
                  "All relationships of this type")
        ->check(checkSelector)
        ->type_name("SOURCE:TYPE")
        ->group(group);
    command.callback([files, arguments] { files->run([&](FileRun& run) { sign(run, *arguments); }); });
}

void declareCountersign(CLI::App& command) {
    const auto arguments = std::make_shared<SignArguments>();
    const auto files = addChangedFile(command, COUNTERSIGN);
    addSigningOptions(command, arguments->signing);
    command.callback([files, arguments] { files->run([&](FileRun& run) { countersign(run, *arguments); }); });
}

void declareUnsign(CLI::App& command) {
    const auto arguments = std::make_shared<UnsignArguments>();
    const auto files = addChangedFile(command, UNSIGN);
    CLI::App* which = command.add_option_group("Which", "What is removed");
    which->add_option("NAME", arguments->name, "The name of a signature, such as sig1")->type_name("");
    which->add_flag("--all", arguments->all, "All signatures, also those that can't be read");
    which->add_flag("--countersignature", arguments->countersignature,
                    "The countersignature, if the package has one");
    which->require_option(1);
    command.callback([files, arguments] { files->run([&](FileRun& run) { unsign(run, *arguments); }); });
}

} // namespace

const Command SIGN{
    "sign",
    "Sign a package, or parts and relationships of it",
    declareSign,
    "The name of the new signature is printed. opctool coverage says what a signature protects.",
    "opctool sign report.docx --key signer.key --public signer.pub\n"
    "opctool sign report.docx --p12 signer.p12 --trust roots.pem",
    "",
    NAME_SCHEMA};

const Command COUNTERSIGN{"countersign",
                          "Sign all signatures of a package",
                          declareCountersign,
                          "The name of the countersignature is printed. Adding a signature later breaks it.",
                          "opctool countersign report.docx --key other.key --public other.pub",
                          "",
                          NAME_SCHEMA};

const Command UNSIGN{"unsign",
                     "Remove signatures",
                     declareUnsign,
                     "",
                     "opctool unsign report.docx sig1\n"
                     "opctool unsign report.docx --all -o unsigned.docx",
                     "",
                     NAME_SCHEMA};

} // namespace opctool
