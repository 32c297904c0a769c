#pragma once

#include "subject/Subject.hpp"

#include <optional>
#include <set>
#include <string>

namespace opc::editing::mending {

/// Those ids of a relationships part that its source names: texts between quotes that are one of them. Reads the source
/// once, and keeps nothing of it.
/// @return nothing if any may be named: the source isn't XML in an encoding that extends ASCII, or can't be read
std::optional<std::set<std::string>> findUsedIds(const inspection::Subject& subject,
                                                 const inspection::RelationshipsView& view);

} // namespace opc::editing::mending
