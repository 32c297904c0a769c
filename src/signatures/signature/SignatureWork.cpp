#include "signatures/signature/SignatureWork.hpp"

#include "signatures/signature/DigitalSignatureData.hpp"

#include <algorithm>
#include <set>
#include <utility>

namespace opc::model {

std::uint64_t measureWork(const std::vector<DigitalSignature>& signatures) {
    std::set<std::pair<const SignedRelationships*, DigestMethod>> different;
    std::uint64_t work = 0;
    for (const DigitalSignature& signature : signatures) {
        const DigitalSignatureData& data = DigitalSignatureData::of(signature);
        const SignedRelationships* const relationships = data.m_signedRelationships.get();
        if (different.emplace(relationships, data.m_signatureParams.getDigestMethod()).second)
            work = std::min(work + relationships->work(), MAXIMUM_WORK + 1);
    }
    return work;
}

} // namespace opc::model
