#include "graph/Targets.hpp"

#include <opc/core/Exception.hpp>

namespace opc::editing {

using model::PartName;

std::optional<PartName> targetOf(const model::Relationship& relationship) {
    if (relationship.getTargetMode() == model::TargetMode::External)
        return std::nullopt;
    try {
        const model::URI target = relationship.getTargetURI();
        if (target.hasScheme() || target.hasAuthority()) // such as C:/a.xml
            return std::nullopt;
        return PartName(target.getPath());
    } catch (const Exception&) {
        return std::nullopt;
    }
}

void visitSources(const model::Package& package,
                  const std::function<void(const PartName&, const model::RelationshipSource&)>& visit) {
    visit(PartName(u"/"), package);
    for (const model::Part& part : package.getParts())
        visit(part.getName(), part);
}

} // namespace opc::editing
