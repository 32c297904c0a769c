#pragma once

#include <opc/interfaces/IPhysicalPartInfo.hpp>
#include <opc/model/Export.hpp>

namespace opc::model {

/// The usual hints for `Package::createPart`: compression and growth. A value type.
class OPC_MODEL_EXPORT StandardPartInfo : public interfaces::IPhysicalPartInfo {
public:
    /// @param compressionType  see `CompressionType`
    /// @param growthHint       how many bytes to reserve for the growth of the part
    explicit StandardPartInfo(
        interfaces::CompressionType compressionType = interfaces::CompressionType::Normal,
        std::uint64_t growthHint = 0) noexcept
        : compressionType(compressionType), growthHint(growthHint) {}
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
