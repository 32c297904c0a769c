#include "RuleNames.hpp"

#include "RepeatableOption.hpp"

#include <opc/inspection/Rule.hpp>

namespace opctool {

CLI::Validator isRule() {
    CLI::Validator validator("");
    validator.operation([](const std::string& name) {
        const bool isKnown = !opc::inspection::findRules(name).empty();
        return isKnown ? std::string() : name + " is no rule: opctool explain lists them";
    });
    return validator;
}

void addProfiles(CLI::App& command, std::vector<std::string>& names) {
    addRepeatable(&command, "--profile", names,
                  "Check by these rules: opc (the default), security, office, all")
        ->check(CLI::IsMember({"opc", "security", "office", "all"}))
        ->type_name("NAME");
}

unsigned profilesOf(const std::vector<std::string>& names) {
    using namespace opc::inspection;
    unsigned profiles = 0;
    for (const std::string& name : names)
        profiles |= name == "opc"        ? OPC
                    : name == "security" ? SECURITY
                    : name == "office"   ? OFFICE
                                         : EVERY_PROFILE;
    return names.empty() ? unsigned{OPC} : profiles;
}

} // namespace opctool
