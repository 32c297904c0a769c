#include "signatures/document/SignatureTrees.hpp"

#include "signatures/document/SignatureFilling.hpp"
#include "signatures/document/SignatureRecords.hpp"
#include "xml/ElementIndex.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

/// @file
/// How the value of a signature and its key are read.

namespace opc::model {

namespace {

using namespace vocabulary::signatures;
using bedrock::certificates::X509CertificateChain;
using bedrock::crypto::utils::base64Decode;

} // namespace

void SignatureTrees::readValueAndKey(const IndexedElement& root, SignatureRecord& data) const {
    getRequiredElementText(root, names.signatureValue, data.m_signatureValueInXML, names.noNamespace);
    data.m_signatureValue = base64Decode(data.m_signatureValueInXML);
    data.m_namespace = vocabulary::signatures::NAMESPACE.text();
    XercesHelper::getElementAttribute(root, names.xmlns, data.m_namespace);

    const auto keyInfo = root.getElement(names.keyInfo);
    if (!keyInfo)
        return;
    if (const auto keyValue = keyInfo->getElement(names.keyValue))
        readKeyValue(*keyValue, data);
    else if (const auto x509Data = keyInfo->getElement(names.x509Data))
        readCertificates(*x509Data, data);
}

void SignatureTrees::readKeyValue(const IndexedElement& keyValue, SignatureRecord& data) const {
    const auto element = keyValue.getElement(names.rsaKeyValue);
    if (!element)
        throw InvalidPartContent("RSA Key Value is missing. DSA for signatures is not supported yet.");
    RSAKeyValue key;
    getRequiredElementText(*element, names.modulus, key.modulus, names.noNamespace);
    getRequiredElementText(*element, names.exponent, key.exponent, names.noNamespace);
    setKeyValue(std::move(key), data);
}

void SignatureTrees::readCertificates(const IndexedElement& x509Data, SignatureRecord& data) const {
    const std::vector<IndexedElement> elements = x509Data.getElements(names.x509Certificate);
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

} // namespace opc::model
