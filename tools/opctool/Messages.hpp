#pragma once

#include <opc/interfaces/Oddity.hpp>

#include <string>
#include <vector>

namespace opctool {

/// Prints a line on standard error: `opctool: PACKAGE: TEXT`.
/// @param package  the path of the package that it is about; empty if it is about none
void tell(const std::string& package, const std::string& text);

/// Prints what a package has that breaks the standard, a line each:
/// `opctool: PACKAGE: PLACE:LINE: WHAT; DONE [RULE]`. Of very many the first, and how many more there are.
void tellOddities(const std::string& package, const std::vector<opc::interfaces::Oddity>& oddities);

} // namespace opctool
