#include <opc/model/Relationship.hpp>

#include "relationships/RelationshipTarget.hpp"

#include <bedrock/network/IRI.hpp>
#include <opc/model/Errors.hpp>

namespace opc::model {

Relationship::Relationship(const std::u16string& relationshipID, const std::u16string& relationshipType,
                           const URI& source, const std::u16string& externalTarget)
    : id(relationshipID), type(relationshipType), sourceURI(source), target(externalTarget),
      targetMode(TargetMode::External) {
}

Relationship::Relationship(const std::u16string& relationshipID, const std::u16string& relationshipType,
                           const URI& source, const URI& internalTarget)
    : id(relationshipID), type(relationshipType), sourceURI(source), targetURI(internalTarget),
      target(internalTarget.toString()), targetMode(TargetMode::Internal) {
}

URI Relationship::getTargetURI() const {
    if (targetMode == TargetMode::Internal) {
        if (!targetURI.hasAbsolutePath())
            targetURI = resolve(sourceURI, targetURI);
        return targetURI;
    }
    if (targetURI.toString().empty()) {
        try {
            targetURI = URI(bedrock::network::IRI(withSlashes(target)).toAsciiString(false));
        } catch (...) {
            throw InvalidURI(
                "Could not successfully convert external target to a URI. Use getTarget() instead.");
        }
    }
    return targetURI;
}

bool Relationship::operator==(const Relationship& other) const {
    return id == other.id && type == other.type && sourceURI == other.sourceURI &&
           targetURI == other.targetURI && target == other.target && targetMode == other.targetMode;
}

} // namespace opc::model
