#pragma once

#include <opc/core/Export.hpp>

#include <cstdint>

namespace opc {

/// A number that nobody can guess.
/// @throws std::runtime_error  if the system has none
OPC_CORE_EXPORT std::uint64_t randomNumber();

} // namespace opc
