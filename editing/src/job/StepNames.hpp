#pragma once

#include <opc/editing/Job.hpp>

#include <string>

namespace opc::editing {

/// What "do" says of a step: `add`, `mv` …
std::string nameOf(const Step& step);

/// How many steps that mend stand in front of all others.
std::size_t countFixes(const Job& job);

/// What is wrong with one that stands behind others.
constexpr const char* LATE_FIX = "it works on the archive, so that it must stand in front of all other steps";

/// How messages name a step: "step 2 (mv)".
/// @param number  from 1
/// @param name    empty if it isn't known
std::string placeOf(std::size_t number, const std::string& name);

} // namespace opc::editing
