#include "Commands.hpp"
#include "Envelope.hpp"
#include "Files.hpp"
#include "OpenedPackage.hpp"
#include "SignedPackage.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/editing/Signatures.hpp>
#include <opc/standard_signatures/Signing.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace opctool {

namespace {

using opc::model::DigitalSignature;
using opc::model::DigitalSignatureManager;

struct Arguments {
    std::string name;
    bool all = false;
    bool countersignature = false;
};

/// The last segment without its extension, such as sig1.
std::string shortName(const std::string& part) {
    const std::string segment = part.substr(part.rfind('/') + 1);
    return segment.substr(0, segment.rfind('.'));
}

std::string partOf(const DigitalSignature& own) {
    return "/_xmlsignatures/" + opc::toUDEString(own.getName()) + ".xml";
}

bool isNamed(const std::string& part, const std::string& name) {
    return part == name || shortName(part) == name;
}

/// @throws BreaksSignatures  another signature signs the part of this one
void throwIfSigned(const opc::editing::Signatures& signatures, const std::string& part) {
    std::vector<std::string> broken =
        signatures.brokenBy({{opc::editing::Change::Kind::PartRemoved, part, {}, {}, {}}});
    broken.erase(std::remove(broken.begin(), broken.end(), part), broken.end());
    opc::editing::throwIfBroken(broken);
}

void removeAll(SignedPackage& package) {
    const std::vector<std::string> standard = package.standardSignatures();
    if (!standard.empty())
        opc::standard_signatures::removeSignatures(*package, package.asItLies(), standard);
    package.signatures().discardSignatures(); // at last, so that an origin that both had goes too
}

void removeStandard(SignedPackage& package, const std::string& part) {
    throwIfSigned(opc::editing::Signatures(*package), part);
    opc::standard_signatures::removeSignature(*package, package.asItLies(), part);
}

void removeOwn(SignedPackage& package, const DigitalSignature& signature) {
    DigitalSignatureManager& signatures = package.signatures();
    if (signatures.isPackageCountersigned() &&
        signature.getName() != signatures.getCountersignature().getName())
        throw opc::Exception("A countersignature needs " + opc::toUDEString(signature.getName()) +
                             "; remove it first with --countersignature");
    throwIfSigned(opc::editing::Signatures(*package), partOf(signature));
    signatures.removeSignature(signature);
}

std::optional<DigitalSignature> findOwn(SignedPackage& package, const std::string& name) {
    if (package.hasOwnSignatures())
        for (const DigitalSignature& signature : package.signatures().getSignatures())
            if (isNamed(partOf(signature), name))
                return signature;
    return std::nullopt;
}

/// @param name  of the signature or of its part
void removeOne(SignedPackage& package, const std::string& name) {
    std::vector<std::string> standard = package.standardSignatures();
    standard.erase(std::remove_if(standard.begin(), standard.end(),
                                  [&name](const std::string& part) { return !isNamed(part, name); }),
                   standard.end());
    const auto own = !standard.empty() && standard.front() == name ? std::nullopt : findOwn(package, name);
    if (standard.size() > 1 || (!standard.empty() && own))
        throw opc::Exception("More than one signature has the name " + name + "; give the name of a part");
    if (!standard.empty())
        removeStandard(package, standard.front());
    else
        removeOwn(package, own ? *own : package.signatures().getSignature(fromArgument(name)));
}

void unsign(FileRun& run, const Arguments& arguments) {
    SignedPackage package(run, opc::interfaces::OpenMode::ReadWrite);
    if (arguments.all)
        removeAll(package);
    else if (arguments.countersignature)
        package.signatures().removeCountersignature();
    else
        removeOne(package, arguments.name);
    package.save();
}

void declare(CLI::App& command) {
    const auto arguments = std::make_shared<Arguments>();
    const auto files = addChangedFile(command, UNSIGN);
    CLI::App* which = command.add_option_group("Which", "What is removed");
    which->add_option("NAME", arguments->name, "The name of a signature, such as sig1, or of its part")
        ->type_name("");
    which->add_flag("--all", arguments->all,
                    "All signatures in both profiles, also those that can't be read");
    which->add_flag("--countersignature", arguments->countersignature,
                    "The countersignature, if the package has one");
    which->require_option(1);
    command.callback([files, arguments] { files->run([&](FileRun& run) { unsign(run, *arguments); }); });
}

} // namespace

const Command UNSIGN{"unsign",
                     "Remove signatures",
                     declare,
                     "A signature that another one signs stays: remove the other one first.",
                     "opctool unsign report.docx sig1\n"
                     "opctool unsign report.docx --all -o unsigned.docx",
                     "",
                     NAME_SCHEMA};

} // namespace opctool
