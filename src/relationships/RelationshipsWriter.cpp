#include "relationships/RelationshipsWriter.hpp"

#include "relationships/RelationshipManager.hpp"
#include "xml/PlainDocumentWriter.hpp"

namespace opc::model {

bool composePlainRelationships(const RelationshipManager& manager, std::string& document) {
    PlainDocumentWriter writer(document, "Relationships",
                               "http://schemas.openxmlformats.org/package/2006/relationships");
    for (const Relationship& relationship : manager.getRelationships({})) {
        writer.beginChild("Relationship");
        writer.addAttribute("Id", relationship.getID());
        writer.addAttribute("Target", relationship.getTarget());
        if (relationship.getTargetMode() == TargetMode::External)
            writer.addAttribute("TargetMode", u"External");
        writer.addAttribute("Type", relationship.getType());
        writer.endChild();
    }
    return writer.end();
}

} // namespace opc::model
