#pragma once

#include <cstdint>

namespace opc::interfaces {

/// How a store should compress the content of a part (ECMA-376 Part 2, growth and compression hints). This is a hint:
/// stores that don't compress ignore it.
enum class CompressionType : std::uint32_t {
    None = 0,      ///< not compressed
    Normal = 1,    ///< balances size and time; used for the parts that the library creates itself
    Maximum = 2,   ///< the smallest size
    Fast = 3,      ///< less time
    SuperFast = 4, ///< the least time
};

} // namespace opc::interfaces
