#pragma once

#include <opc/model/Export.hpp>
#include <opc/model/URI.hpp>

#include <cstdint>
#include <string>

namespace opc::model {

/// How a `RelationshipSelector` selects relationships.
enum class RelationshipSelectorType : std::uint32_t {
    SourceId = 0,   ///< by relationship ID
    SourceType = 1, ///< by relationship type
};

/// Selects relationships of one source for a digital signature: the one with an ID, or all with a type. A value type.
class OPC_MODEL_EXPORT RelationshipSelector {
public:
    /// @param sourceURI          a part name, or "/" for the package
    /// @param selectorType       whether `selectionCriteria` is an ID or a type
    /// @param selectionCriteria  the ID or the type; letter case matters
    /// @throws InvalidURI      the source isn't a part name
    /// @throws opc::Exception  the criteria are empty
    RelationshipSelector(const URI& sourceURI, RelationshipSelectorType selectorType,
                         std::u16string selectionCriteria);

    URI getSourceURI() const { return sourceURI; }
    RelationshipSelectorType getSelectorType() const { return selectorType; }
    std::u16string getSelectionCriteria() const { return selectionCriteria; }

    bool operator==(const RelationshipSelector& other) const;
    bool operator!=(const RelationshipSelector& other) const { return !(*this == other); }

private:
    URI sourceURI;
    RelationshipSelectorType selectorType;
    std::u16string selectionCriteria;
};

} // namespace opc::model
