#include <opc/model/Relationship.hpp>

#include "relationships/RelationshipTarget.hpp"

#include <bedrock/network/IRI.hpp>
#include <opc/model/Errors.hpp>

namespace opc::model {

URI Relationship::unresolvedTargetURI() const {
    return values->targetMode == TargetMode::Internal ? URI(getTarget()) : URI();
}

URI Relationship::getTargetURI() const {
    if (!targetURI)
        targetURI = std::make_shared<const URI>(resolveTarget());
    return *targetURI;
}

URI Relationship::resolveTarget() const {
    if (values->targetMode == TargetMode::Internal) {
        const URI target = unresolvedTargetURI();
        return target.hasAbsolutePath() ? target : resolve(*values->sourceURI, target);
    }
    try {
        return URI(bedrock::network::IRI(withSlashes(getTarget())).toAsciiString(false));
    } catch (...) {
        throw InvalidURI("Could not successfully convert external target to a URI. Use getTarget() instead.");
    }
}

bool Relationship::operator==(const Relationship& other) const {
    const Values& mine = *values;
    const Values& its = *other.values;
    const auto target = [](const Relationship& relationship) {
        return relationship.targetURI ? *relationship.targetURI : relationship.unresolvedTargetURI();
    };
    return mine.id == its.id && mine.type == its.type && *mine.sourceURI == *its.sourceURI &&
           mine.target == its.target && mine.targetMode == its.targetMode && target(*this) == target(other);
}

} // namespace opc::model
