#include <opc/inspection/SignatureExtent.hpp>

#include "checks/signatures/Signatures.hpp"
#include "subject/Names.hpp"

namespace opc::inspection {

SignatureExtent::SignatureExtent(InputStream& signature) {
    for (const SignatureReference& reference : readSignature(signature).manifest) {
        const std::string name = partNameOf(reference);
        if (!isRelationshipsName(name)) {
            parts.insert(keyOfName(name));
            continue;
        }
        Selection& selected = relationships[keyOfName(sourceOfRelationships(name))];
        bool selects = false;
        for (const SignatureTransform& transform : reference.transforms) {
            selects = selects || transform.isOfRelationships();
            selected.ids.insert(transform.sourceIds.begin(), transform.sourceIds.end());
            selected.types.insert(transform.sourceTypes.begin(), transform.sourceTypes.end());
        }
        selected.all = selected.all || !selects;
    }
}

bool SignatureExtent::signsPart(std::string_view name) const {
    return parts.count(keyOfName(name)) != 0;
}

bool SignatureExtent::signsRelationship(std::string_view source, std::string_view id,
                                        std::string_view type) const {
    const Selection* const selected = find(source);
    return selected != nullptr &&
           (selected->all || selected->ids.count(id) != 0 || selected->types.count(type) != 0);
}

bool SignatureExtent::signsRelationshipsOf(std::string_view source) const {
    return find(source) != nullptr;
}

const SignatureExtent::Selection* SignatureExtent::find(std::string_view source) const {
    const auto found = relationships.find(keyOfName(source));
    return found == relationships.end() ? nullptr : &found->second;
}

} // namespace opc::inspection
