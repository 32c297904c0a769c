#pragma once

#include <cstdint>

namespace opc::interfaces {

/// How the content of a part should be compressed: advice to the physical layer (ECMA-376 Part 2, growth and
/// compression hints). Stores that don't compress take no notice.
enum class CompressionType : std::uint32_t {
    None = 0,      ///< stored as it is
    Normal = 1,    ///< the usual balance; what the library uses for the parts that it makes itself
    Maximum = 2,   ///< smallest size
    Fast = 3,      ///< less time
    SuperFast = 4, ///< least time
};

} // namespace opc::interfaces
