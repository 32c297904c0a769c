#pragma once

namespace CLI {
class App;
}

namespace opctool {

/// Each adds a family of commands, with its arguments and what it does.
/// @{

void addInfoCommand(CLI::App& app);      ///< info
void addListCommands(CLI::App& app);     ///< ls, rels, cat
void addPropertyCommands(CLI::App& app); ///< props
void addChangeCommands(CLI::App& app);   ///< new, add, rm, relate, unrelate

/// @}

} // namespace opctool
