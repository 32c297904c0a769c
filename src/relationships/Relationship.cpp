#include <opc/model/Relationship.hpp>

#include "relationships/RelationshipTarget.hpp"

#include <bedrock/network/IRI.hpp>
#include <opc/model/Errors.hpp>

namespace opc::model {

Relationship::Relationship(const std::u16string& id, const std::u16string& type, const URI& source,
                           const std::u16string& externalTarget)
    : values(std::make_shared<const Values>(Values{id, type, source, externalTarget, TargetMode::External})) {
}

Relationship::Relationship(const std::u16string& id, const std::u16string& type, const URI& source,
                           const URI& internalTarget)
    : values(std::make_shared<const Values>(
          Values{id, type, source, internalTarget.toString(), TargetMode::Internal})),
      targetURI(internalTarget) {
}

URI Relationship::getTargetURI() const {
    if (values->targetMode == TargetMode::Internal) {
        if (!targetURI.hasAbsolutePath())
            targetURI = resolve(values->sourceURI, targetURI);
        return targetURI;
    }
    if (targetURI.toString().empty()) {
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
    return mine.id == its.id && mine.type == its.type && mine.sourceURI == its.sourceURI &&
           targetURI == other.targetURI && mine.target == its.target && mine.targetMode == its.targetMode;
}

} // namespace opc::model
