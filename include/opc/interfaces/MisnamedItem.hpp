#pragma once

#include <string>

namespace opc::interfaces {

/// Something in a store that other programs may take for something else than it is here: by its name, by a second name, by its
/// attributes or by its place. They may not find a part, or find one more, and so show another content.
struct MisnamedItem {
    std::u16string name; ///< the name in the store; of bytes without a name, what and where they are
    std::string reason;  ///< why it can be taken for something else, in English

    /// Whether the name is right: that of a piece of an interleaved part, which office documents mustn't have (ECMA-376
    /// Part 1) and their programs don't join.
    bool isPiece = false;
};

} // namespace opc::interfaces
