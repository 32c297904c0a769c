#pragma once

#include "Command.hpp"

#include <string>
#include <vector>

namespace opctool {

/// @{
/// The commands, by the file that defines them.
extern const Command INFO;
extern const Command LS;
extern const Command RELS;
extern const Command CAT;
extern const Command PROPS;
extern const Command NEW;
extern const Command ADD;
extern const Command PUT;
extern const Command RM;
extern const Command RELATE;
extern const Command UNRELATE;
extern const Command MV;
extern const Command GC;
extern const Command RETYPE;
extern const Command RETARGET;
extern const Command APPLY;
extern const Command KEYGEN;
extern const Command SIGN;
extern const Command COUNTERSIGN;
extern const Command UNSIGN;
extern const Command VERIFY;
extern const Command COVERAGE;
extern const Command CHECK;
extern const Command EXPLAIN;
extern const Command FIX;
extern const Command CLEAN;
extern const Command EXTERNAL;
extern const Command ITEMS;
extern const Command TYPE;
extern const Command DIFF;
extern const Command HASH;
extern const Command FLAT;
extern const Command GIT_SETUP;
extern const Command GRAPH;
extern const Command UNPACK;
extern const Command PACK;
extern const Command REPACK;
extern const Command SCHEMA;
/// @}

/// All commands, in the order of help.
const std::vector<const Command*>& allCommands();

/// @return null if no command has this name
const Command* findCommand(const std::string& name);

} // namespace opctool
