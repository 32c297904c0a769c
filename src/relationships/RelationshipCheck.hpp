#pragma once

#include <opc/model/TargetMode.hpp>

#include <string>
#include <string_view>

namespace opc::model {

/// What reading checks of a relationship that the schema takes. Checks the values in this order.
/// @return its target mode
/// @throws InvalidPartContent
TargetMode checkRelationship(const std::u16string& type, const std::u16string& target,
                             std::u16string_view targetMode);

} // namespace opc::model
