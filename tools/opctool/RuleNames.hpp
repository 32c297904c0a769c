#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace opctool {

/// Accepts the ids of rules.
CLI::Validator isRule();

/// Declares --profile.
void addProfiles(CLI::App& command, std::vector<std::string>& names);

/// The bits of these profiles; without a name, those of the default.
unsigned profilesOf(const std::vector<std::string>& names);

} // namespace opctool
