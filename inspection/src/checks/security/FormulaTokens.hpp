#pragma once

#include <set>
#include <string_view>

namespace opc::inspection {

/// The functions of a formula of a binary workbook that ask a server, start a program or call a library, in upper case, as
/// `reachingFunctions` gives them for a text. Functions that are newer than the format stand in the names of the workbook.
/// @param tokens  in the order in which they are calculated; looked at up to the first unknown one
std::set<std::string_view> reachingFunctionsOfTokens(std::string_view tokens);

} // namespace opc::inspection
