#pragma once

#include <cstdint>

namespace opc::interfaces {

/// How a package is opened.
enum class OpenMode : std::uint32_t {
    ReadOnly = 0,   ///< an existing package, to read
    CreateOnly = 1, ///< a new package: nothing to read, and nothing can be deleted
    ReadWrite = 2,  ///< an existing package, to read and change
};

} // namespace opc::interfaces
