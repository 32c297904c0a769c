#include <opc/model/Relationship.hpp>

#include "relationships/RelationshipTarget.hpp"

#include <bedrock/network/IRI.hpp>
#include <opc/model/Errors.hpp>

#include <utility>

namespace opc::model {

Relationship::Relationship(Values made) : values(std::make_shared<const Values>(std::move(made))) {
}

URI Relationship::unresolvedTargetURI() const {
    return values->targetMode == TargetMode::Internal ? URI(values->target) : URI();
}

URI Relationship::getTargetURI() const {
    if (values->targetMode == TargetMode::Internal) {
        if (targetURI.text().empty())
            targetURI = unresolvedTargetURI();
        if (!targetURI.hasAbsolutePath())
            targetURI = resolve(values->sourceURI, targetURI);
        return targetURI;
    }
    if (targetURI.text().empty()) {
        try {
            targetURI = URI(bedrock::network::IRI(withSlashes(values->target)).toAsciiString(false));
        } catch (...) {
            throw InvalidURI(
                "Could not successfully convert external target to a URI. Use getTarget() instead.");
        }
    }
    return targetURI;
}

bool Relationship::operator==(const Relationship& other) const {
    const Values& mine = *values;
    const Values& its = *other.values;
    const auto target = [](const Relationship& relationship) {
        const URI& uri = relationship.targetURI;
        return uri.text().empty() ? relationship.unresolvedTargetURI() : uri;
    };
    return mine.id == its.id && *mine.type == *its.type && mine.sourceURI == its.sourceURI &&
           mine.target == its.target && mine.targetMode == its.targetMode && target(*this) == target(other);
}

} // namespace opc::model
