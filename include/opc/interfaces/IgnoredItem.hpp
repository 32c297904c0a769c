#pragma once

#include <string>

namespace opc::interfaces {

/// Something that a package contains beside its parts.
struct IgnoredItem {
    std::u16string name; ///< the name in the store
    std::string reason;  ///< why it isn't a part, in English

    /// Whether a program that saves in place has left it behind ([trash], ECMA-376 Part 2), with a content that is as the store
    /// says. Every program passes over it.
    bool isLeftover = false;
};

} // namespace opc::interfaces
