#pragma once

#include <iosfwd>

namespace opctool {

struct Command;

/// @{
/// Man pages in the macros of mdoc(7): of the tool, and of a command.
void writeManPage(std::ostream& out);
void writeManPage(std::ostream& out, const Command& command);
/// @}

/// @{
/// Completions of the tool's command line, for a shell.
void writeBashCompletion(std::ostream& out);
void writeZshCompletion(std::ostream& out);
void writeFishCompletion(std::ostream& out);
/// @}

} // namespace opctool
