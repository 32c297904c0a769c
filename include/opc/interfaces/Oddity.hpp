#pragma once

#include <cstddef>
#include <string>

namespace opc::interfaces {

/// Something in a package that breaks the standard, and that a store takes all the same.
struct Oddity {
    std::string rule; ///< the number in ECMA-376 Part 2, such as "M2.4"; empty if the rule has none

    /// The part or the item; for a single relationship its part, "#" and its ID. Empty for the store as a whole.
    std::u16string place;

    std::size_t line = 0; ///< of the XML document; 0 if it isn't in one
    std::string what;     ///< what is odd, in English, to follow the place
    std::string done;     ///< what the store does about it, in English
};

} // namespace opc::interfaces
