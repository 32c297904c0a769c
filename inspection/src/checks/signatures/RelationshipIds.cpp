#include "checks/signatures/RelationshipIds.hpp"

namespace opc::inspection {

const RelationshipIds::View& RelationshipIds::viewOf(const PartView& part) {
    if (views.empty())
        for (const RelationshipsView& source : subject.relationships()) {
            View& view = views[source.part];
            view.readable = source.document.failure.empty();
            for (const RelationshipView& relationship : source.entries)
                view.ids.insert(relationship.id);
        }
    return views[&part];
}

} // namespace opc::inspection
