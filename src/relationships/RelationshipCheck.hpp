#pragma once

#include <opc/model/TargetMode.hpp>

#include <string>
#include <string_view>

namespace opc::model {

/// Checks a relationship that is valid by the schema, in the order of its values.
/// @return its target mode
/// @throws InvalidPartContent
TargetMode checkRelationship(const std::u16string& type, const std::u16string& target,
                             std::u16string_view targetMode);

} // namespace opc::model
