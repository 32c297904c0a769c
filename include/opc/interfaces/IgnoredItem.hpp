#pragma once

#include <string>

namespace opc::interfaces {

/// Something that a store holds beside the parts of a package.
struct IgnoredItem {
    std::u16string name; ///< as the store calls it
    std::string reason;  ///< why it is no part, in English
};

} // namespace opc::interfaces
