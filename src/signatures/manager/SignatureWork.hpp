#pragma once

#include <cstdint>

namespace opc::model {

/// A small package can have many signatures, and each can select a long relationship very often. What they take to
/// digest, all different ones together, is bounded, in bytes as `SignedRelationships::work` counts them.
inline constexpr std::uint64_t MAXIMUM_WORK = std::uint64_t{2} << 30;

inline constexpr char TOO_MUCH_WORK[] = "The selected relationships of all signatures of a package can't "
                                        "have more than 2 GiB, those above 1 KiB counted four times.";

} // namespace opc::model
