#pragma once

#include <cstdint>

namespace opc::interfaces {

/// How a package is opened.
enum class OpenMode : std::uint32_t {
    ReadOnly = 0,   ///< an existing package, for reading
    CreateOnly = 1, ///< a new, empty package; nothing can be deleted from it
    ReadWrite = 2,  ///< an existing package, for reading and changing
};

} // namespace opc::interfaces
