#include <opc/model/DigitalSignature.hpp>

#include "signatures/signature/DigitalSignatureData.hpp"

namespace opc::model {

DigitalSignature::DigitalSignature(std::shared_ptr<DigitalSignatureData> data) : m_impl(std::move(data)) {
}

DigitalSignature::~DigitalSignature() = default;

std::u16string DigitalSignature::getName() const {
    return m_impl->getName();
}

SignatureParams DigitalSignature::getSignatureParams() const {
    return m_impl->getSignatureParams();
}

std::vector<unsigned char> DigitalSignature::getSignatureValue() const {
    return m_impl->getSignatureValue();
}

Enumerator<std::vector<PartName>> DigitalSignature::getSignedPartNames() const {
    return m_impl->getSignedPartNames();
}

Enumerator<std::vector<Relationship>> DigitalSignature::getSignedRelationships() const {
    return m_impl->getSignedRelationships();
}

boost::posix_time::ptime DigitalSignature::getSignedTime() const {
    return m_impl->getSignedTime();
}

bedrock::certificates::X509Certificate DigitalSignature::getCertificate() const {
    return m_impl->getCertificate();
}

bedrock::certificates::X509CertificateChain DigitalSignature::getCertificateChain() const {
    return m_impl->getCertificateChain();
}

} // namespace opc::model
