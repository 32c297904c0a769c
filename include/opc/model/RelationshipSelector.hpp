#pragma once

#include <opc/model/Export.hpp>
#include <opc/model/URI.hpp>

#include <cstdint>
#include <string>

namespace opc::model {

/// What the criteria of a `RelationshipSelector` are.
enum class RelationshipSelectorType : std::uint32_t {
    SourceId = 0,   ///< a relationship ID
    SourceType = 1, ///< a relationship type
};

/// Names relationships of one source for a digital signature: the one with an ID, or all of a type. A value.
class OPC_MODEL_EXPORT RelationshipSelector {
public:
    /// @param source    a part name, or "/" for the package
    /// @param type      what the criteria are
    /// @param criteria  the ID or the type sought, compared with letter case counting
    /// @throws InvalidURI      the source is no part name
    /// @throws opc::Exception  the criteria are empty
    RelationshipSelector(const URI& source, RelationshipSelectorType type, std::u16string criteria);

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
