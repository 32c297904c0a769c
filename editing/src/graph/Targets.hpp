#pragma once

#include <opc/model/Package.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>

#include <functional>
#include <optional>

namespace opc::editing {

/// The name of the part that an internal relationship leads to; nothing if it leads out of the package, or no part can have such
/// a name. The part need not exist.
std::optional<model::PartName> targetOf(const model::Relationship& relationship);

/// Calls `visit` with "/" and the package, and with the name of each part and the part, in the order of their names.
void visitSources(const model::Package& package,
                  const std::function<void(const model::PartName&, const model::RelationshipSource&)>& visit);

} // namespace opc::editing
