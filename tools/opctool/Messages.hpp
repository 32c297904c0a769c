#pragma once

#include <opc/interfaces/Oddity.hpp>

#include <string>
#include <vector>

namespace opctool {

/// Prints a line on standard error: `opctool: PACKAGE: TEXT`.
/// @param package  the path of the package that the line is about; empty if it is about none
void tell(const std::string& package, const std::string& text);

/// That line, with its end.
std::string messageLine(const std::string& package, const std::string& text);

/// What a package has that breaks the standard, a text each: `PLACE:LINE: WHAT; DONE [RULE]`.
/// @param all  if not, of very many the first, and how many more there are
std::vector<std::string> describeOddities(const std::vector<opc::interfaces::Oddity>& oddities, bool all);

} // namespace opctool
