#pragma once

#include <string>

namespace CLI {
class App;
} // namespace CLI

namespace opctool {

class FileRun;
class SignedPackage;

/// The forms of signatures.
enum class Profile {
    Standard, ///< W3C XML Signature, as office programs read it (ECMA-376 Part 2, digital signatures)
    OpcModel, ///< that of `opc::model::DigitalSignatureManager`
};

/// `standard` or `opcmodel`.
const char* profileName(Profile profile);

/// Declares --profile.
/// @param name  stays empty unless the command line has the option
void addProfileOption(CLI::App& command, std::string& name);

/// The profile for a further signature: the one that the command line names; else that of the signatures that are there,
/// which is remarked; else the standard's.
/// @param wanted  empty, or a name
Profile chooseProfile(FileRun& run, SignedPackage& package, const std::string& wanted);

/// @throws CLI::ValidationError  always: an option or command belongs to this profile, and another one was chosen
[[noreturn]] void refuseUnlessProfile(const std::string& option, Profile needed);

} // namespace opctool
