#pragma once

#include <cstdint>

namespace opc::model {

/// Where the target of a relationship lies.
enum class TargetMode : std::uint32_t {
    Internal = 0, ///< it is a part of the same package
    External = 1, ///< it lies outside the package
};

} // namespace opc::model
