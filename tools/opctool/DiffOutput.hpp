#pragma once

#include <opc/inspection/Comparison.hpp>

#include <cstddef>
#include <string>

namespace opctool {

class FileRun;

/// How differences are printed as text.
struct DiffStyle {
    enum class Extent { Lines, Overview, Names } extent = Extent::Lines;
    std::size_t context = 3; ///< lines around those that differ
    std::string before, now; ///< the names of the packages
    bool isColored = false;
};

void printDiff(FileRun& run, const opc::inspection::Comparison& comparison, const DiffStyle& style);

/// @param other  the name of the package that is compared with that of the run
void printDiffJSON(FileRun& run, const opc::inspection::Comparison& comparison, const std::string& other,
                   std::size_t context);

/// The JSON Schema of what is printed.
extern const char* const DIFF_SCHEMA;

} // namespace opctool
