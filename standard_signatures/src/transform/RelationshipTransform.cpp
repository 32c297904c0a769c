#include "transform/RelationshipTransform.hpp"

#include "canonical/CanonicalText.hpp"
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
    constexpr std::size_t USUAL_LENGTH = 256; // of a relationship
    CanonicalText text((1 + selected.size()) * USUAL_LENGTH);
    const auto put = [&text](std::string_view name, std::string_view value) {
        text.put(name);
        text.putValue(value);
    };
    put("<Relationships xmlns=\"", RELATIONSHIPS_NAMESPACE);
    text.put("\">");
    for (const RelationshipValues* const one : selected) {
        put("<Relationship Id=\"", one->id);
        put("\" Target=\"", one->target);
        text.put(one->isExternal ? "\" TargetMode=\"External" : "\" TargetMode=\"Internal");
        put("\" Type=\"", one->type);
        text.put("\"></Relationship>");
    }
    text.put("</Relationships>");
    return text.take();
}

} // namespace opc::standard_signatures
