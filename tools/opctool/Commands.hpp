#pragma once

namespace CLI {
class App;
}

namespace opctool {

/// Thrown by a command that has done its work and printed that the answer is no.
struct AnswerIsNo {};

/// Each adds a family of commands, with its arguments and its action.
/// @{

void addInfoCommand(CLI::App& app);      ///< info
void addListCommands(CLI::App& app);     ///< ls, rels, cat
void addPropertyCommands(CLI::App& app); ///< props
void addChangeCommands(CLI::App& app);   ///< new, add, rm, relate, unrelate
void addKeyCommand(CLI::App& app);       ///< keygen
void addSignCommands(CLI::App& app);     ///< sign, countersign, unsign
void addVerifyCommand(CLI::App& app);    ///< verify
void addCoverageCommand(CLI::App& app);  ///< coverage
void addCheckCommand(CLI::App& app);     ///< check
void addExplainCommand(CLI::App& app);   ///< explain

/// @}

} // namespace opctool
