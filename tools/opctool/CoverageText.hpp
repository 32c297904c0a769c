#pragma once

#include <opc/model/PackageCoverage.hpp>

#include <string>

namespace opctool {

class JSONOutput;

/// What isn't covered, in lines for people to read. The same for every command that speaks of it.
std::string summarize(const opc::model::PackageCoverage& coverage);

/// The same, complete, for programs: members of the object that was begun.
void print(JSONOutput& output, const opc::model::PackageCoverage& coverage);

} // namespace opctool
