#pragma once

#include "signatures/digests/SignedRelationships.hpp"

#include <opc/model/ContentType.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/RelationshipSelector.hpp>

#include <memory>
#include <vector>

namespace opc::model {

/// What a new signature covers, gathered from the package. The first three vectors are parallel.
struct DataToSign {
    std::vector<PartName> partNames;
    std::vector<std::vector<unsigned char>> digests;
    std::vector<ContentType> contentTypes;
    std::vector<RelationshipSelector> selectors;
    std::shared_ptr<const SignedRelationships> relationships =
        std::make_shared<SignedRelationships>(); ///< those that the selectors chose
};

} // namespace opc::model
