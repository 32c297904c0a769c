#pragma once

#include <opc/interfaces/CompressionType.hpp>

#include <cstdint>
#include <string>

namespace opc::interfaces {

/// What the creator of a part tells the physical layer about it. Read within `IPhysicalPackage::createPart`
/// alone.
class IPhysicalPartInfo {
public:
    virtual CompressionType getCompressionType() const = 0;

    /// Bytes to reserve for the part to grow into.
    virtual std::uint64_t getGrowthHint() const = 0;

    /// Whatever the application and its physical layer have agreed on under `key`; null if nothing.
    virtual void* getExtraInfo(const std::u16string& key) const = 0;

    virtual ~IPhysicalPartInfo() = default;
};

} // namespace opc::interfaces
