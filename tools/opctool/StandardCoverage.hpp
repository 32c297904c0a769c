#pragma once

#include <opc/standard_signatures/CoverageTable.hpp>

namespace opctool {

class FileRun;
class JSONOutput;
class PackageFile;

/// What the signatures in the standard's profile protect.
/// @param file  closed
/// @throws opc::Exception  the report would be too long
opc::standard_signatures::CoverageTable tabulate(PackageFile& file);

/// Prints tables of parts and relationships, and what is missing.
void printCoverage(FileRun& run, const opc::standard_signatures::CoverageTable& table);

/// Adds the members of the report to the object that was begun last.
void printCoverage(JSONOutput& output, const opc::standard_signatures::CoverageTable& table);

} // namespace opctool
