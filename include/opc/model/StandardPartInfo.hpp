#pragma once

#include <opc/interfaces/IPhysicalPartInfo.hpp>
#include <opc/model/Export.hpp>

namespace opc::model {

/// What `Package::createPart` tells the physical layer in the ordinary case: how to compress, how far the
/// part may grow, and nothing else. A value.
class OPC_MODEL_EXPORT StandardPartInfo : public interfaces::IPhysicalPartInfo {
public:
    /// @param compression  see `CompressionType`
    /// @param growth       bytes to reserve for the part to grow into
    explicit StandardPartInfo(interfaces::CompressionType compression = interfaces::CompressionType::Normal,
                              std::uint64_t growth = 0) noexcept
        : compressionType(compression), growthHint(growth) {}
    StandardPartInfo(const StandardPartInfo&) = default;
    StandardPartInfo& operator=(const StandardPartInfo&) = default;
    ~StandardPartInfo() override;

    interfaces::CompressionType getCompressionType() const override;
    std::uint64_t getGrowthHint() const override;

    /// @return null for every key
    void* getExtraInfo(const std::u16string& key) const override;

private:
    interfaces::CompressionType compressionType;
    std::uint64_t growthHint;
};

} // namespace opc::model
