#pragma once

#include "package/RelationshipSourceImpl.hpp"

#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Part.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/PhysicalInputStream.hpp>
#include <opc/model/PhysicalOutputStream.hpp>

#include <memory>

namespace opc::model {

/// What all handles on one part share.
struct Part::Impl : RelationshipSource::Impl {
    Impl(Package* package, interfaces::IPhysicalPart* physicalPart, const PartName& name,
         const ContentType& contentType, interfaces::OpenMode openMode)
        : RelationshipSource::Impl(name.getURI()), package(package), physicalPart(physicalPart), name(name),
          contentType(contentType), openMode(openMode) {}

    /// Says that the store has deleted the content. The part stays, and so do its streams, since the caller may hold
    /// references to them.
    void forgetPhysicalPart();

    /// Calls `ask` with the part of the store, and translates its failure.
    template <typename Ask>
    auto askContent(Ask ask) const;

    /// Gives the adapter, and makes it at the first call.
    template <typename Adapter, typename GetStream>
    Adapter& connect(std::unique_ptr<Adapter>& adapter, GetStream getStream) const;

    Package* package;
    interfaces::IPhysicalPart* physicalPart; // null once its deletion has succeeded
    PartName name;
    ContentType contentType;
    interfaces::OpenMode openMode;
    std::unique_ptr<PhysicalInputStream> inputStream;
    std::unique_ptr<PhysicalOutputStream> outputStream;
    bool valid = true;
};

} // namespace opc::model
