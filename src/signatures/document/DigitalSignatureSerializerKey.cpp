#include "signatures/document/DigitalSignatureSerializer.hpp"

#include "signatures/document/SignatureCost.hpp"
#include "signatures/document/SignatureRecords.hpp"
#include "signatures/document/SignatureScanner.hpp"
#include "xml/DocumentBudget.hpp"
#include "xml/ElementIndex.hpp"
#include "xml/PlainDocument.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

/// @file
/// How the value of a signature and its key are read.

namespace opc::model {

namespace {

using namespace vocabulary::signatures;
using bedrock::certificates::X509Certificate;
using bedrock::certificates::X509CertificateChain;
using bedrock::crypto::utils::base64Decode;

/// The size of a key from the length of its modulus in Base64. Everything too long for 2048 bits counts as 4096.
std::uint64_t getKeySize(const std::u16string& modulus) {
    if (modulus.size() <= 256)
        return 1024;
    return modulus.size() <= 512 ? 2048 : 4096;
}

void setKeyValue(RSAKeyValue key, SignatureRecord& data) {
    key.keySize = getKeySize(key.modulus);
    data.m_keyValue = std::move(key);
}

/// The first certificate is the signer's.
void addCertificate(const std::u16string& text, SignatureRecord& data, X509CertificateChain& chain) {
    if (data.m_share)
        data.m_share->addElements(cost::CERTIFICATE);
    X509Certificate certificate(base64Decode(text));
    if (data.m_certificate)
        chain.addCertificate(std::move(certificate));
    else
        data.m_certificate = std::move(certificate);
}

} // namespace

void DigitalSignatureSerializer::readValueAndKey(const IndexedElement& root, SignatureRecord& data) const {
    getRequiredElementText(root, m_xerces->names.signatureValue, data.m_signatureValueInXML,
                           m_xerces->names.noNamespace);
    data.m_signatureValue = base64Decode(data.m_signatureValueInXML);
    data.m_namespace = NAMESPACE.text();
    XercesHelper::getElementAttribute(root, m_xerces->names.xmlns, data.m_namespace);

    const auto keyInfo = root.getElement(m_xerces->names.keyInfo);
    if (!keyInfo)
        return;
    if (const auto keyValue = keyInfo->getElement(m_xerces->names.keyValue))
        readKeyValue(*keyValue, data);
    else if (const auto x509Data = keyInfo->getElement(m_xerces->names.x509Data))
        readCertificates(*x509Data, data);
}

void DigitalSignatureSerializer::readKeyValue(const IndexedElement& keyValue, SignatureRecord& data) const {
    const auto element = keyValue.getElement(m_xerces->names.rsaKeyValue);
    if (!element)
        throw InvalidPartContent("RSA Key Value is missing. DSA for signatures is not supported yet.");
    RSAKeyValue key;
    getRequiredElementText(*element, m_xerces->names.modulus, key.modulus, m_xerces->names.noNamespace);
    getRequiredElementText(*element, m_xerces->names.exponent, key.exponent, m_xerces->names.noNamespace);
    setKeyValue(std::move(key), data);
}

void DigitalSignatureSerializer::readCertificates(const IndexedElement& x509Data,
                                                  SignatureRecord& data) const {
    const std::vector<IndexedElement> elements = x509Data.getElements(m_xerces->names.x509Certificate);
    if (elements.empty())
        throw InvalidPartContent("Supported key management mechanisms in signatures are KeyValue using RSA "
                                 "or X509 certificates. Others are not supported.");
    X509CertificateChain chain;
    for (const IndexedElement& element : elements) {
        std::u16string text;
        XercesHelper::getElementText(element, text);
        if (text.empty())
            throw InvalidPartContent("XML signature: x509CertificateElement is empty.");
        addCertificate(text, data, chain);
    }
    data.m_certificateChain = std::move(chain);
}

void DigitalSignatureSerializer::takeScannedValueAndKey(const ScannedSignature& scanned,
                                                        SignatureRecord& data) {
    data.m_signatureValueInXML = widen(scanned.signatureValue);
    data.m_signatureValue = base64Decode(data.m_signatureValueInXML);
    data.m_namespace = NAMESPACE.text();
    if (!scanned.modulus.empty())
        setKeyValue({0, widen(scanned.modulus), widen(scanned.exponent)}, data);
    if (scanned.certificates.empty())
        return;
    X509CertificateChain chain;
    for (const std::string_view text : scanned.certificates)
        addCertificate(widen(text), data, chain);
    data.m_certificateChain = std::move(chain);
}

} // namespace opc::model
