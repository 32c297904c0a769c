#pragma once

#include <opc/inspection/Finding.hpp>

#include <string>

namespace opctool {

/// The rule, the part or the item, and the relationship, with a colon where anything is named.
std::string describePlace(const opc::inspection::Rule& rule, const opc::inspection::Place& place);

/// What wasn't mended, and why.
std::string describeLeft(const opc::inspection::Finding& finding);

} // namespace opctool
