#include "signatures/signature/DigitalSignatureData.hpp"

#include "signatures/algorithms/DigestEngines.hpp"
#include "signatures/digests/RelationshipsText.hpp"

#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/model/Errors.hpp>

/// @file
/// The digests that a signature computes with its own method, both in signing and in verifying.

namespace opc::model {

namespace {

template <typename Action>
auto translateDigestFailures(Action&& action) {
    try {
        return std::forward<Action>(action)();
    } catch (const bedrock::crypto::utils::CouldNotComputeDigest& e) {
        throw Exception(std::string("Internal exception: Could not compute the digest value.") + e.what());
    }
}

} // namespace

std::shared_ptr<bedrock::crypto::DigestEngine> DigitalSignatureData::createDigestEngine() const {
    return model::createDigestEngine(*m_cryptoEngine, m_signatureParams.getDigestMethod());
}

DigitalSignatureData::Bytes DigitalSignatureData::computeDigest(InputStream& bytes) const {
    return translateDigestFailures([&] { return digestStream(createDigestEngine().get(), bytes); });
}

const std::u16string&
DigitalSignatureData::computeRelationshipsDigest(const SignedRelationships& relationships) const {
    std::u16string& digest = relationships.digests[m_signatureParams.getDigestMethod()];
    if (!digest.empty())
        return digest;
    try {
        RelationshipsText text(relationships);
        return digest = bedrock::crypto::utils::base64Encode(computeDigest(text));
    } catch (const InvalidXMLDocument& e) {
        throw Exception(e.what());
    }
}

} // namespace opc::model
