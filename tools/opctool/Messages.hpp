#pragma once

#include <opc/interfaces/Oddity.hpp>

#include <string>
#include <vector>

namespace opctool {

/// Prints a line on standard error: `opctool: PACKAGE: TEXT`.
/// @param package  the path of the package that the line is about; empty if it is about none
void tell(const std::string& package, const std::string& text);

/// Prints what breaks the standard in a package, one line each: `opctool: PACKAGE: PLACE:LINE: WHAT; DONE [RULE]`. If
/// there are very many, prints the first ones and the number of the others.
void tellOddities(const std::string& package, const std::vector<opc::interfaces::Oddity>& oddities);

} // namespace opctool
