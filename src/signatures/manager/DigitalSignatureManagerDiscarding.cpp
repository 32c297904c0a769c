#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/manager/DigitalSignatureManagerImpl.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <optional>
#include <set>

/// @file
/// Removal of everything that belongs to signatures by its relationships, without reading it.

namespace opc::model {

namespace {

bool belongsToSignatures(const Relationship& relationship) {
    const std::u16string type = relationship.getType();
    return type == getOriginRelationshipType() || type == getSignatureRelationshipType();
}

bool belongsToForeignSignatures(const Relationship& relationship) {
    const std::u16string type = relationship.getType();
    return type == getForeignOriginRelationshipType() || type == getForeignSignatureRelationshipType();
}

bool hasContentTypeOfSignatures(const Part& part) {
    const ContentType type = part.getContentType();
    return type == getOriginPartContentType() || type == getSignaturePartContentType();
}

std::optional<PartName> findTarget(const Relationship& relationship) {
    if (relationship.getTargetMode() == TargetMode::External)
        return std::nullopt;
    try {
        return PartName(relationship.getTargetURI());
    } catch (const Exception&) { // the target isn't a part
        return std::nullopt;
    }
}

/// The targets of relationships, by their purpose.
class Targets {
public:
    void add(const RelationshipSource& source) {
        for (const Relationship& relationship : source.getRelationships()) {
            if (const auto target = findTarget(relationship)) {
                if (belongsToSignatures(relationship))
                    ofSignatures.insert(*target);
                else if (belongsToForeignSignatures(relationship))
                    ofForeignSignatures.insert(*target);
                else
                    ofOthers.insert(*target);
            }
        }
    }

    bool isToBeDeleted(const Part& part) const {
        const PartName name = part.getName();
        return ofSignatures.count(name) != 0 && ofForeignSignatures.count(name) == 0 &&
               (ofOthers.count(name) == 0 || hasContentTypeOfSignatures(part));
    }

private:
    std::set<PartName> ofSignatures;
    std::set<PartName> ofForeignSignatures;
    std::set<PartName> ofOthers;
};

void deleteRelationships(RelationshipSource& source) {
    for (const Relationship& relationship : source.getRelationships())
        if (belongsToSignatures(relationship))
            source.deleteRelationship(relationship.getID());
}

void discardAll(Package& package) {
    Targets targets;
    targets.add(package);
    const auto parts = package.getParts();
    for (const Part& part : parts)
        targets.add(part);
    for (Part part : parts) {
        if (targets.isToBeDeleted(part))
            package.deletePart(part.getName());
        else
            deleteRelationships(part);
    }
    deleteRelationships(package);
}

} // namespace

void DigitalSignatureManager::discardSignatures() {
    m_impl->throwIfNotOpenForModify();
    try {
        discardAll(m_impl->package);
    } catch (const Exception& e) {
        throw translated<CouldNotRemoveSignature>(e, e.what());
    }
    m_impl->list.signatures.clear();
    m_impl->list.nextNumber = 1;
}

} // namespace opc::model
