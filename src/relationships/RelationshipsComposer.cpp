#include "relationships/RelationshipsComposer.hpp"

#include "relationships/RelationshipManager.hpp"
#include "xml/PlainDocumentComposer.hpp"

#include <opc/model/RelationshipsVocabulary.hpp>

namespace opc::model {

bool composePlainRelationships(const RelationshipManager& manager, std::string& document) {
    using namespace vocabulary::relationships;
    PlainDocumentComposer composer(document, RELATIONSHIPS, vocabulary::relationships::NAMESPACE);
    manager.visit([&composer](const RelationshipGroup::Values& relationship) {
        composer.beginChild(RELATIONSHIP);
        composer.addAttribute(ID, relationship.id);
        composer.addAttribute(TARGET, relationship.target);
        if (relationship.targetMode == TargetMode::External)
            composer.addAttribute(TARGET_MODE, EXTERNAL);
        composer.addAttribute(vocabulary::relationships::TYPE, relationship.type);
        composer.endChild();
    });
    return composer.end();
}

} // namespace opc::model
