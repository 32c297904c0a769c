#pragma once

#include <cstdint>
#include <vector>

namespace opc::model {

class DigitalSignature;

/// A small package can have many signatures, and each can select a long relationship very often. The work of digesting
/// the relationships of all signatures together is bounded, in bytes as `SignedRelationships::work` counts them.
inline constexpr std::uint64_t MAXIMUM_WORK = std::uint64_t{2} << 30;

inline constexpr char TOO_MUCH_WORK[] = "The selected relationships of all signatures of a package can't "
                                        "have more than 2 GiB, those above 1 KiB counted four times.";

/// The work for these signatures. Relationships that several of them share count once for each digest method.
/// @return at most `MAXIMUM_WORK` + 1
std::uint64_t measureWork(const std::vector<DigitalSignature>& signatures);

} // namespace opc::model
