#pragma once

#include <opc/interfaces/CompressionType.hpp>

#include <cstdint>
#include <string>

namespace opc::interfaces {

/// Hints that the creator of a part gives to the store. The store reads them only during
/// `IPhysicalPackage::createPart`.
class IPhysicalPartInfo {
public:
    virtual CompressionType getCompressionType() const = 0;

    /// How many bytes to reserve for the growth of the part.
    virtual std::uint64_t getGrowthHint() const = 0;

    /// @return what application and store have agreed on for `key`; null for nothing
    virtual void* getExtraInfo(const std::u16string& key) const = 0;

    virtual ~IPhysicalPartInfo() = default;
};

} // namespace opc::interfaces
