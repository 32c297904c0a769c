#pragma once

#include <opc/scanning/Failure.hpp>

#include <nlohmann/json_fwd.hpp>

namespace opctool {

using opc::scanning::Failure;

/// The member `error` of what `--json=2` prints.
nlohmann::ordered_json failureToJSON(const Failure& failure);

} // namespace opctool
