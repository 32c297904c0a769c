#include "signatures/signature/DigitalSignatureData.hpp"

#include "signatures/algorithms/CryptoErrors.hpp"
#include "signatures/algorithms/RsaKeys.hpp"
#include "signatures/document/SignatureVocabulary.hpp"

#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <bedrock/crypto/utils/Base64.hpp>

namespace opc::model {

namespace {

std::shared_ptr<bedrock::crypto::CryptoEngine> createCryptoEngine() {
    return translateCryptoFailures([] {
        return std::make_shared<bedrock::crypto::CryptoEngine>(
            std::make_shared<bedrock::crypto::cryptopp::CryptoProvider>());
    });
}

} // namespace

DigitalSignatureData::DigitalSignatureData()
    : m_cryptoEngine(createCryptoEngine()), m_signedRelationships(std::make_shared<SignedRelationships>()) {
}

DigitalSignatureData::~DigitalSignatureData() = default;

Enumerator<std::vector<PartName>> DigitalSignatureData::getSignedPartNames() const {
    return Enumerator<std::vector<PartName>>(m_signedPartNames);
}

Enumerator<std::vector<Relationship>> DigitalSignatureData::getSignedRelationships() const {
    return Enumerator<std::vector<Relationship>>(m_signedRelationships->toVector());
}

bedrock::certificates::X509Certificate DigitalSignatureData::getCertificate() const {
    return m_certificate.value_or(bedrock::certificates::X509Certificate());
}

bedrock::certificates::X509CertificateChain DigitalSignatureData::getCertificateChain() const {
    return m_certificateChain.value_or(bedrock::certificates::X509CertificateChain());
}

std::u16string DigitalSignatureData::getName() const {
    return vocabulary::signatures::NAME_PREFIX.text() + m_signatureId;
}

PartName DigitalSignatureData::computeSignaturePartName() {
    if (!m_signaturePartName)
        m_signaturePartName = PartName(vocabulary::signatures::PARTS_FOLDER.text() + getName() +
                                       vocabulary::signatures::PART_EXTENSION.text());
    return *m_signaturePartName;
}

void DigitalSignatureData::setKeyValue(const Bytes& publicKey) {
    translateCryptoFailures([&] {
        const auto key = createRsaPublicKey(*m_cryptoEngine,
                                            rsaKeySize(m_signatureParams.getSignatureMethod()), publicKey);
        if (!key)
            throw Exception("Could not determine key info element for this signature method.");
        RSAKeyValue keyValue;
        keyValue.modulus = bedrock::crypto::utils::base64Encode(key->getModulus());
        keyValue.exponent = bedrock::crypto::utils::base64Encode(key->getPublicExponent());
        m_keyValue = std::move(keyValue);
    });
}

} // namespace opc::model
