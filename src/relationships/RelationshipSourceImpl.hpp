#pragma once

#include "relationships/RelationshipManager.hpp"

#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/RelationshipSource.hpp>
#include <opc/model/URI.hpp>

#include <cstdint>

namespace opc::model {

/// What all copies of a source share. A derived class adds its own to it.
struct RelationshipSource::Impl {
    explicit Impl(const URI& source) : manager(source) {}

    interfaces::IPhysicalPart* relationshipsPart = nullptr;
    RelationshipManager manager;
    std::uint64_t nextIdNumber = 1;
};

} // namespace opc::model
