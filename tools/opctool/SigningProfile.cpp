#include "SigningProfile.hpp"

#include "FileRun.hpp"
#include "SignedPackage.hpp"

#include <CLI/CLI.hpp>

namespace opctool {

namespace {

constexpr const char* STANDARD = "standard";
constexpr const char* OPCMODEL = "opcmodel";

} // namespace

const char* profileName(Profile profile) {
    return profile == Profile::Standard ? STANDARD : OPCMODEL;
}

void addProfileOption(CLI::App& command, std::string& name) {
    command
        .add_option(
            "--profile", name,
            "standard: the form that office programs read. opcmodel: the library's own. The default is "
            "that of the signatures which the package has, else standard")
        ->check(CLI::IsMember({STANDARD, OPCMODEL}))
        ->type_name("NAME");
}

Profile chooseProfile(FileRun& run, SignedPackage& package, const std::string& wanted) {
    if (!wanted.empty())
        return wanted == OPCMODEL ? Profile::OpcModel : Profile::Standard;
    const bool hasStandard = !package.standardSignatures().empty();
    const bool hasOwn = package.hasOwnSignatures();
    const Profile chosen = hasOwn && !hasStandard ? Profile::OpcModel : Profile::Standard;
    if (hasOwn || hasStandard)
        run.remark(std::string("the profile is ") + profileName(chosen) +
                   ", as that of the signatures which the package has; --profile chooses another one");
    return chosen;
}

void refuseUnlessProfile(const std::string& option, Profile needed) {
    throw CLI::ValidationError(option, std::string("needs --profile ") + profileName(needed));
}

} // namespace opctool
