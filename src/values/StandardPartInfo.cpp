#include <opc/model/StandardPartInfo.hpp>

namespace opc::model {

StandardPartInfo::~StandardPartInfo() = default;

interfaces::CompressionType StandardPartInfo::getCompressionType() const {
    return compressionType;
}

std::uint64_t StandardPartInfo::getGrowthHint() const {
    return growthHint;
}

void* StandardPartInfo::getExtraInfo(const std::u16string& /*key*/) const {
    return nullptr;
}

} // namespace opc::model
