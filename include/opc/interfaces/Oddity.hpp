#pragma once

#include <cstddef>
#include <string>

namespace opc::interfaces {

/// A place in a package that breaks the standard, and that the store accepts.
struct Oddity {
    std::string rule; ///< the number of the rule in ECMA-376 Part 2, such as "M2.4"; empty if it has none

    /// The part or item. For a single relationship: its part, "#" and its ID. Empty for the whole package.
    std::u16string place;

    std::size_t line = 0; ///< the line in the XML document; 0 if the place isn't in one
    std::string what;     ///< what breaks the standard, in English; continues the text of `place`
    std::string done;     ///< what the store does about it, in English
};

} // namespace opc::interfaces
