#include <opc/model/RelationshipSelector.hpp>

#include <opc/model/Errors.hpp>
#include <opc/model/PartName.hpp>

#include <utility>

namespace opc::model {

RelationshipSelector::RelationshipSelector(const URI& sourceURI, RelationshipSelectorType selectorType,
                                           std::u16string selectionCriteria)
    : sourceURI(sourceURI), selectorType(selectorType), selectionCriteria(std::move(selectionCriteria)) {
    try {
        const PartName name(sourceURI);
    } catch (const InvalidPartName& e) {
        throw InvalidURI(std::string("Input sourceURI is incorrect:") + e.what());
    }
    if (this->selectionCriteria.empty())
        throw Exception("SelectionCriteria cannot be empty.");
}

bool RelationshipSelector::operator==(const RelationshipSelector& other) const {
    return sourceURI == other.sourceURI && selectorType == other.selectorType &&
           selectionCriteria == other.selectionCriteria;
}

} // namespace opc::model
