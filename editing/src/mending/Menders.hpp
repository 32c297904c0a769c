#pragma once

#include "mending/Round.hpp"

#include <cstddef>
#include <string_view>

namespace opc::editing::mending {

/// How what breaks a rule is mended.
struct Mender {
    /// What is mended together. If a stage has something to mend, later ones wait for the next round.
    enum class Stage {
        Whole,   ///< items and whole documents
        Entries, ///< what stands in content types and relationships
        Within,  ///< what that means for parts
    };

    std::string_view rule;
    Stage stage;
    std::string_view does; ///< as a sentence without a full stop
    Outcome (*mend)(Round& round, const Finding& finding);
};

struct MenderRows {
    const Mender* first;
    std::size_t count;
};

/// One table for each concern of the rules.
/// @{
MenderRows archiveMenders();
MenderRows nameMenders();
MenderRows documentMenders();
MenderRows contentTypeMenders();
MenderRows relationshipMenders();
MenderRows propertyMenders();
/// @}

/// Null if there is none.
const Mender* findMender(std::string_view rule);

} // namespace opc::editing::mending
