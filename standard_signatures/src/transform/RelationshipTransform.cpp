#include "transform/RelationshipTransform.hpp"

#include "canonical/CanonicalXml.hpp"
#include "reason/Refusal.hpp"
#include "transform/RelationshipsNamespace.hpp"

namespace opc::standard_signatures {

std::vector<const RelationshipValues*> select(const RelationshipsDocument& document,
                                              const RelationshipSelection& selection) {
    std::vector<const RelationshipValues*> selected;
    std::size_t named = 0;
    for (const RelationshipValues& one : document.relationships) {
        const bool isNamed = selection.ids.count(one.id) != 0;
        named += isNamed ? 1 : 0;
        if (isNamed || selection.types.count(one.type) != 0)
            selected.push_back(&one);
    }
    if (named != selection.ids.size())
        throw Refusal(Reason::Code::RelationshipsRefused, "", "A signed relationship is missing");
    return selected;
}

std::string canonicalize(const std::vector<const RelationshipValues*>& selected) {
    std::string text = "<Relationships xmlns=\"" + std::string(RELATIONSHIPS_NAMESPACE) + "\">";
    for (const RelationshipValues* const one : selected) {
        text += "<Relationship Id=\"";
        appendAttributeValue(text, one->id);
        text += "\" Target=\"";
        appendAttributeValue(text, one->target);
        text += one->isExternal ? "\" TargetMode=\"External\" Type=\"" : "\" TargetMode=\"Internal\" Type=\"";
        appendAttributeValue(text, one->type);
        text += "\"></Relationship>";
    }
    return text + "</Relationships>";
}

} // namespace opc::standard_signatures
