#pragma once

#include <opc/model/PackageCoverage.hpp>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace opctool {

/// What isn't covered, in lines for people to read. The same for every command that speaks of it.
std::string summarize(const opc::model::PackageCoverage& coverage);

/// The same, complete, for programs.
nlohmann::ordered_json toJSON(const opc::model::PackageCoverage& coverage);

} // namespace opctool
