#pragma once

#include <string>

namespace opc::interfaces {

/// Something in a store that is read as a part although its name isn't exactly that of the part. Other programs may not find
/// the part, and so show another content.
struct MisnamedItem {
    std::u16string name; ///< the name in the store
    std::string reason;  ///< what other programs may not understand, in English

    /// Whether the name is right: that of a piece of an interleaved part, which office documents mustn't have (ECMA-376
    /// Part 1) and their programs don't join.
    bool isPiece = false;
};

} // namespace opc::interfaces
