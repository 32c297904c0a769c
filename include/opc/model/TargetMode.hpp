#pragma once

#include <cstdint>

namespace opc::model {

/// Where the target of a relationship is.
enum class TargetMode : std::uint32_t {
    Internal = 0, ///< in the same package: a part
    External = 1, ///< outside the package
};

} // namespace opc::model
