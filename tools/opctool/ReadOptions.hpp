#pragma once

#include <opc/physical/ZipOptions.hpp>

namespace CLI {
class App;
} // namespace CLI

namespace opctool {

/// How packages are read.
struct ReadOptions {
    bool strict = false;
    opc::physical::ZipOptions zip; ///< the limits; whether it is lenient follows from `strict`
};

/// The group of options that holds the limits.
constexpr const char* LIMITS_GROUP = "Limits for hostile files; a size takes a unit, such as 100M";

/// Declares --strict, --lenient and the limits.
void addReadOptions(CLI::App& command, ReadOptions& options);

} // namespace opctool
