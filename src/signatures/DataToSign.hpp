#pragma once

#include <opc/model/ContentType.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>
#include <opc/model/RelationshipSelector.hpp>

#include <vector>

namespace opc::model {

/// What one signature covers, as it was gathered from the package. The first three vectors are parallel.
struct DataToSign {
    std::vector<PartName> partNames;
    std::vector<std::vector<unsigned char>> digests;
    std::vector<ContentType> contentTypes;
    std::vector<RelationshipSelector> selectors;
    std::vector<Relationship>
        relationships; ///< those that the selectors chose, each as often as it was chosen
};

} // namespace opc::model
