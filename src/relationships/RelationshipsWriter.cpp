#include "relationships/RelationshipsWriter.hpp"

#include "relationships/RelationshipManager.hpp"
#include "xml/PlainDocumentWriter.hpp"

namespace opc::model {

bool composePlainRelationships(const RelationshipManager& manager, std::string& document) {
    PlainDocumentWriter writer(document, "Relationships",
                               "http://schemas.openxmlformats.org/package/2006/relationships");
    manager.visit([&writer](const RelationshipGroup::Values& relationship) {
        writer.beginChild("Relationship");
        writer.addAttribute("Id", relationship.id);
        writer.addAttribute("Target", relationship.target);
        if (relationship.targetMode == TargetMode::External)
            writer.addAttribute("TargetMode", u"External");
        writer.addAttribute("Type", relationship.type);
        writer.endChild();
    });
    return writer.end();
}

} // namespace opc::model
