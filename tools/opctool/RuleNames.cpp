#include "RuleNames.hpp"

#include <opc/inspection/Rule.hpp>

#include <string>

namespace opctool {

CLI::Validator isRule() {
    CLI::Validator validator("");
    validator.operation([](const std::string& name) {
        const bool isKnown = !opc::inspection::findRules(name).empty();
        return isKnown ? std::string() : name + " is no rule: opctool explain lists them";
    });
    return validator;
}

} // namespace opctool
