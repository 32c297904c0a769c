#pragma once

#include <opc/editing/Properties.hpp>

#include <string>
#include <vector>

namespace opctool {

class FileRun;

/// @file
/// The properties of office documents on the command line: custom and extended ones, and sensitivity labels.

void printOfficeProperties(FileRun& run, opc::editing::PropertyKind kind);
void printLabels(FileRun& run);

struct OfficeChanges {
    bool clear = false;
    std::vector<std::string> unset;
    std::vector<std::string> set; ///< NAME=VALUE
    std::string type;             ///< of the values; empty for that of the old property, or for text
};

/// @throws CLI::ValidationError  a value can't be set
void changeOfficeProperties(FileRun& run, opc::editing::PropertyKind kind, const OfficeChanges& changes);

} // namespace opctool
