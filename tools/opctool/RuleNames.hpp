#pragma once

#include <CLI/CLI.hpp>

namespace opctool {

/// Accepts the ids of rules.
CLI::Validator isRule();

} // namespace opctool
