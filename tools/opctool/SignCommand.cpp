#include "Commands.hpp"
#include "Envelope.hpp"
#include "Files.hpp"
#include "OwnSigning.hpp"
#include "RepeatableOption.hpp"
#include "SignedPackage.hpp"
#include "SigningProfile.hpp"
#include "SigningResult.hpp"
#include "StandardSigning.hpp"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace opctool {

namespace {

using opc::interfaces::OpenMode;

std::string checkSelector(const std::string& argument) {
    const bool isSound = !argument.empty() && argument.front() == '/' &&
                         argument.find(':') != std::string::npos && argument.back() != ':';
    return isSound ? "" : "Write SOURCE:VALUE; SOURCE begins with a slash";
}

void sign(FileRun& run, const SignArguments& arguments) {
    SignedPackage package(run, OpenMode::ReadWrite);
    if (chooseProfile(run, package, arguments.profile) == Profile::Standard)
        signInStandardProfile(run, package, arguments);
    else
        signInOwnProfile(run, package, arguments);
}

void countersign(FileRun& run, const SignArguments& arguments) {
    SignedPackage package(run, OpenMode::ReadWrite);
    if (chooseProfile(run, package, arguments.profile) == Profile::Standard)
        refuseUnlessProfile("countersign", Profile::OpcModel);
    countersign(run, package, arguments);
}

void declareSign(CLI::App& command) {
    const auto arguments = std::make_shared<SignArguments>();
    const auto files = addChangedFile(command, SIGN);
    addProfileOption(command, arguments->profile);
    addSigningOptions(command, arguments->signing);
    command
        .add_option("--comment", arguments->comment,
                    "Why the document is signed, for office programs to show; in the profile standard")
        ->type_name("TEXT");
    const char* const group = "What is signed; without these options, everything, in the profile standard "
                              "but for properties and thumbnail";
    CLI::Option* parts =
        addRepeatable(&command, "--part", arguments->parts, "A part's name")->type_name("NAME")->group(group);
    CLI::Option* relationships =
        addRepeatable(&command, "--relationship", arguments->relationships,
                      "One relationship; SOURCE is a part name, or \"/\" for the package")
            ->check(checkSelector)
            ->type_name("SOURCE:ID")
            ->group(group);
    addRepeatable(&command, "--relationship-type", arguments->relationshipTypes,
                  "All relationships of this type; in the profile opcmodel")
        ->check(checkSelector)
        ->type_name("SOURCE:TYPE")
        ->group(group);
    command
        .add_flag("--all", arguments->all,
                  "Properties and thumbnail, too, which signing programs leave out; in the profile standard")
        ->excludes(parts)
        ->excludes(relationships)
        ->group(group);
    command.callback([files, arguments] { files->run([&](FileRun& run) { sign(run, *arguments); }); });
}

void declareCountersign(CLI::App& command) {
    const auto arguments = std::make_shared<SignArguments>();
    const auto files = addChangedFile(command, COUNTERSIGN);
    addProfileOption(command, arguments->profile);
    addSigningOptions(command, arguments->signing);
    command.callback([files, arguments] { files->run([&](FileRun& run) { countersign(run, *arguments); }); });
}

} // namespace

const Command SIGN{"sign",
                   "Sign a package, or parts and relationships of it",
                   declareSign,
                   "The name of the new signature is printed. The profile is the form of the signature: "
                   "standard is that of office programs, "
                   "of XPS and of Visual Studio extensions, opcmodel is the library's own. A key without a "
                   "certificate says nothing about "
                   "who signs. Parts that nothing leads to are warned of: somebody may bring them into the "
                   "document later. opctool coverage says "
                   "what a signature protects.",
                   "opctool sign report.docx --key signer.key --cert signer.pem\n"
                   "opctool sign report.docx --p12 signer.p12 --comment Approved\n"
                   "opctool sign report.docx --profile opcmodel --key signer.key",
                   "",
                   SIGNING_SCHEMA};

const Command COUNTERSIGN{"countersign",
                          "Sign all signatures of a package, in the library's own profile",
                          declareCountersign,
                          "The name of the countersignature is printed. Adding a signature later breaks it. "
                          "The standard's profile has no "
                          "countersignatures.",
                          "opctool countersign report.docx --key other.key --public other.pub",
                          "",
                          NAME_SCHEMA};

} // namespace opctool
