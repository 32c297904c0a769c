#include "Commands.hpp"

#include <algorithm>

namespace opctool {

const std::vector<const Command*>& allCommands() {
    // clang-format off
    static const std::vector<const Command*> all{
        &INFO, &LS, &RELS, &CAT, &PROPS, &CHECK, &EXPLAIN, &EXTERNAL, &ITEMS, &TYPE, &GRAPH,
        &DIFF, &HASH, &FLAT, &GIT_SETUP,
        &NEW, &ADD, &PUT, &RM, &RELATE, &UNRELATE, &MV, &GC, &RETYPE, &RETARGET, &APPLY, &FIX, &CLEAN,
        &UNPACK, &PACK, &REPACK,
        &KEYGEN, &SIGN, &COUNTERSIGN, &UNSIGN, &VERIFY, &COVERAGE,
        &SCHEMA,
    };
    // clang-format on
    return all;
}

const Command* findCommand(const std::string& name) {
    const auto& all = allCommands();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&name](const Command* command) { return name == command->name; });
    return found == all.end() ? nullptr : *found;
}

} // namespace opctool
