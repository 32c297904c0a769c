#pragma once

#include <string>

namespace opc::interfaces {

/// Something that a package contains beside its parts.
struct IgnoredItem {
    std::u16string name; ///< the name in the store
    std::string reason;  ///< why it isn't a part, in English
};

} // namespace opc::interfaces
