#include <opc/model/RelationshipSelector.hpp>

#include <opc/model/Errors.hpp>
#include <opc/model/PartName.hpp>

#include <utility>

namespace opc::model {

RelationshipSelector::RelationshipSelector(const URI& source, RelationshipSelectorType type,
                                           std::u16string criteria)
    : sourceURI(source), selectorType(type), selectionCriteria(std::move(criteria)) {
    try {
        const PartName name(sourceURI);
    } catch (const InvalidPartName& e) {
        throw InvalidURI(std::string("Input sourceURI is incorrect:") + e.what());
    }
    if (selectionCriteria.empty())
        throw Exception("SelectionCriteria cannot be empty.");
}

bool RelationshipSelector::operator==(const RelationshipSelector& other) const {
    return sourceURI == other.sourceURI && selectorType == other.selectorType &&
           selectionCriteria == other.selectionCriteria;
}

} // namespace opc::model
