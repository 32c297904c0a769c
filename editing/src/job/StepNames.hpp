#pragma once

#include <opc/editing/Job.hpp>

#include <string>

namespace opc::editing {

/// What "do" says of a step: `add`, `mv` …
std::string nameOf(const Step& step);

/// How messages name a step: "step 2 (mv)".
/// @param number  from 1
/// @param name    empty if it isn't known
std::string placeOf(std::size_t number, const std::string& name);

} // namespace opc::editing
