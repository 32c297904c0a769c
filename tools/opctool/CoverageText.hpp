#pragma once

#include <opc/model/PackageCoverage.hpp>

#include <string>

namespace opctool {

class JSONOutput;

/// Describes what isn't covered, in lines for people, in the same way for all commands.
std::string summarize(const opc::model::PackageCoverage& coverage);

/// The same, complete, for programs: adds members to the object that was begun last.
void printCoverage(JSONOutput& output, const opc::model::PackageCoverage& coverage);

} // namespace opctool
