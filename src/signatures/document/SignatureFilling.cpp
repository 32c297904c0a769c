#include "signatures/document/SignatureFilling.hpp"

#include "signatures/document/SignatureCost.hpp"
#include "signatures/document/SignatureRecords.hpp"
#include "signatures/document/SignatureVocabulary.hpp"
#include "xml/DocumentBudget.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Exception.hpp>
#include <opc/model/AlgorithmURIMap.hpp>

namespace opc::model {

using namespace vocabulary::signatures;
using bedrock::certificates::X509Certificate;
using bedrock::certificates::X509CertificateChain;
using bedrock::crypto::utils::base64Decode;

namespace {

/// The size of a key from the length of its modulus in Base64. Everything too long for 2048 bits counts as 4096.
std::uint64_t getKeySize(const std::u16string& modulus) {
    if (modulus.size() <= 256)
        return 1024;
    return modulus.size() <= 512 ? 2048 : 4096;
}

} // namespace

std::u16string readSignatureId(const std::u16string& id) {
    constexpr std::u16string_view PREFIX = SIGNATURE_ID_PREFIX.wide();
    return id.compare(0, PREFIX.size(), PREFIX) == 0 ? id.substr(PREFIX.size()) : id;
}

void setKeyValue(RSAKeyValue key, SignatureRecord& data) {
    key.keySize = getKeySize(key.modulus);
    data.m_keyValue = std::move(key);
}

void addCertificate(const std::u16string& text, SignatureRecord& data, X509CertificateChain& chain) {
    if (data.m_share)
        data.m_share->addElements(cost::CERTIFICATE);
    X509Certificate certificate(base64Decode(text));
    if (data.m_certificate)
        chain.addCertificate(std::move(certificate));
    else
        data.m_certificate = std::move(certificate);
}

void settleParameters(SignatureRecord& data) {
    std::uint64_t keySize = 0;
    if (data.m_keyValue)
        keySize = data.m_keyValue->keySize;
    else if (data.m_certificate)
        keySize = data.m_certificate->getKeySize();
    const DigestMethod digest = AlgorithmURIMap::getSigningParameters(data.m_signatureMethod).first;
    data.m_signatureParams =
        SignatureParams(digest, keySize == 0 ? SignatureMethod::NoKey : keySizeToSignatureMethod(keySize));
}

void throwIfNoKeySize(SignatureMethod method) {
    switch (method) {
    case SignatureMethod::RSA1024:
    case SignatureMethod::RSA2048:
    case SignatureMethod::RSA4096:
        return;
    case SignatureMethod::NoKey:
        break;
    }
    throw Exception("Could not serialize key info element for this signature method.");
}

} // namespace opc::model
