#include "signatures/DigitalSignatureSerializer.hpp"

#include "signatures/DigitalSignatureData.hpp"
#include "signatures/DocumentErrors.hpp"
#include "signatures/SignatureLimits.hpp"
#include "xml/DocumentPoolReset.hpp"
#include "xml/ElementIndex.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/AlgorithmURIMap.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace opc::model {

namespace {

using bedrock::certificates::X509Certificate;
using bedrock::certificates::X509CertificateChain;
using bedrock::crypto::utils::base64Decode;

std::unique_ptr<xercesc::DOMLSParser, XercesDeleter> createSignatureParser() {
    auto parser = XercesHelper::createParser();
    parser->getDomConfig()->setParameter(xercesc::XMLUni::fgXercesUseCachedGrammarInParse, true);
    parser->getDomConfig()->setParameter(xercesc::XMLUni::fgXercesSchemaFullChecking, true);
    loadGrammars(parser.get(), {&schemas::PACKAGE_SIGNATURE, &schemas::XML_SIGNATURE});
    return parser;
}

IndexedElement getOnlyElement(const IndexedElement& parent, const XercesString& name, const char* message) {
    const std::vector<IndexedElement> elements = parent.getElements(name);
    if (elements.size() != 1)
        throw InvalidPartContent(message);
    return elements.front();
}

/// The signature's identifier in the `Id` of the root.
std::u16string withoutPrefix(const std::u16string& id) {
    const std::u16string prefix = vocabulary::SIGNATURE_ID_PREFIX;
    return id.compare(0, prefix.size(), prefix) == 0 ? id.substr(prefix.size()) : id;
}

/// The size of a key by the length of its modulus in Base64. What is too long for 2048 bits counts as 4096.
std::uint64_t getKeySize(const std::u16string& modulus) {
    if (modulus.size() <= 256)
        return 1024;
    return modulus.size() <= 512 ? 2048 : 4096;
}

SignatureParams settleParameters(const DigitalSignatureData& data) {
    std::uint64_t keySize = 0;
    if (data.m_keyValue)
        keySize = data.m_keyValue->keySize;
    else if (data.m_certificate)
        keySize = data.m_certificate->getKeySize();
    const DigestMethod digest = AlgorithmURIMap::getSigningParameters(data.m_signatureMethod).first;
    return SignatureParams(digest, keySize == 0 ? SignatureMethod::NoKey : keySizeToSignatureMethod(keySize));
}

} // namespace

DigitalSignatureSerializer::DigitalSignatureSerializer()
    : m_parser(createSignatureParser()), m_writer(XercesHelper::createWriter()), m_packageNames(u""),
      m_packageNamespace(vocabulary::PACKAGE_SIGNATURE_NAMESPACE) {
}

DigitalSignatureSerializer::~DigitalSignatureSerializer() = default;

void DigitalSignatureSerializer::readSignature(InputStream& stream, DigitalSignatureData& data) {
    if (!m_parser)
        m_parser = createSignatureParser();
    try {
        const DocumentPoolReset reset(m_parser.get());
        translateDocumentFailures([&] {
            const ElementIndex index(
                XercesHelper::readDocumentFromStream(m_parser.get(), stream, true, {}, {})
                    ->getDocumentElement());
            SignatureLimits(m_names).check(index);
            readDocument(index.at(0), data);
        });
    } catch (const xercesc::OutOfMemoryException&) {
        m_parser.reset(); // it can't be used again, and holds on to its memory
        throw;
    }
}

void DigitalSignatureSerializer::readDocument(const IndexedElement& root, DigitalSignatureData& data) {
    std::u16string id;
    if (XercesHelper::getElementAttribute(root, m_names.id, id))
        data.m_signatureId = withoutPrefix(id);
    readValueAndKey(root, data);
    readObjects(root, data);
    readSignedInfoMethods(root, data);
    readSignedInfoReferences(root, data);
    data.m_signatureParams = settleParameters(data);
}

IndexedElement DigitalSignatureSerializer::getRequiredElement(const IndexedElement& element,
                                                              const XercesString& name,
                                                              const XercesString& namespaceURI) const {
    const auto found =
        namespaceURI == u"" ? element.getElement(name) : element.getElementNS(namespaceURI, name);
    if (!found)
        throw InvalidPartContent("XML signature: " + toUDEString(name) + " is not present.");
    return *found;
}

void DigitalSignatureSerializer::getRequiredElementText(const IndexedElement& element,
                                                        const XercesString& name, std::u16string& text,
                                                        const XercesString& namespaceURI) const {
    XercesHelper::getElementText(getRequiredElement(element, name, namespaceURI), text);
    if (text.empty())
        throw InvalidPartContent("XML signature: " + toUDEString(name) + " is empty.");
}

std::u16string DigitalSignatureSerializer::getRequiredAttribute(const IndexedElement& element,
                                                                const XercesString& name,
                                                                const char* message) {
    std::u16string value;
    if (!XercesHelper::getElementAttribute(element, name, value))
        throw InvalidPartContent(message);
    return value;
}

void DigitalSignatureSerializer::readValueAndKey(const IndexedElement& root,
                                                 DigitalSignatureData& data) const {
    getRequiredElementText(root, m_names.signatureValue, data.m_signatureValueInXML, m_names.noNamespace);
    data.m_signatureValue = base64Decode(data.m_signatureValueInXML);
    data.m_namespace = vocabulary::XML_SIGNATURE_NAMESPACE;
    XercesHelper::getElementAttribute(root, m_names.xmlns, data.m_namespace);

    const auto keyInfo = root.getElement(m_names.keyInfo);
    if (!keyInfo)
        return;
    if (const auto keyValue = keyInfo->getElement(m_names.keyValue))
        readKeyValue(*keyValue, data);
    else if (const auto x509Data = keyInfo->getElement(m_names.x509Data))
        readCertificates(*x509Data, data);
}

void DigitalSignatureSerializer::readKeyValue(const IndexedElement& keyValue,
                                              DigitalSignatureData& data) const {
    const auto element = keyValue.getElement(m_names.rsaKeyValue);
    if (!element)
        throw InvalidPartContent("RSA Key Value is missing. DSA for signatures is not supported yet.");
    RSAKeyValue key;
    getRequiredElementText(*element, m_names.modulus, key.modulus, m_names.noNamespace);
    getRequiredElementText(*element, m_names.exponent, key.exponent, m_names.noNamespace);
    key.keySize = getKeySize(key.modulus);
    data.m_keyValue = std::move(key);
}

void DigitalSignatureSerializer::readCertificates(const IndexedElement& x509Data,
                                                  DigitalSignatureData& data) const {
    const std::vector<IndexedElement> elements = x509Data.getElements(m_names.x509Certificate);
    if (elements.empty())
        throw InvalidPartContent("Supported key management mechanisms in signatures are KeyValue using RSA "
                                 "or X509 certificates. Others are not supported.");
    X509CertificateChain chain;
    for (const IndexedElement& element : elements) {
        std::u16string text;
        XercesHelper::getElementText(element, text);
        if (text.empty())
            throw InvalidPartContent("XML signature: x509CertificateElement is empty.");
        X509Certificate certificate(base64Decode(text));
        if (data.m_certificate)
            chain.addCertificate(std::move(certificate));
        else
            data.m_certificate = std::move(certificate);
    }
    data.m_certificateChain = std::move(chain);
}

void DigitalSignatureSerializer::readObjects(const IndexedElement& root, DigitalSignatureData& data) {
    for (const IndexedElement& element : root.getElements(m_names.object)) {
        const std::u16string id =
            getRequiredAttribute(element, m_names.id, "XML signature: Object missing Id attribute.");
        SignatureObject object{id, {}};
        toText(element, object.XMLBytes);
        const bool isFirst =
            data.m_objects.emplace(id, std::move(object)).second; // of one Id, the first stays
        if (id != vocabulary::PACKAGE_OBJECT_ID)
            continue;
        readPackageObject(element, data);
        if (isFirst)
            data.m_content.digestedManifestReferences = data.m_content.manifestReferences.size();
    }
}

void DigitalSignatureSerializer::readPackageObject(const IndexedElement& object,
                                                   DigitalSignatureData& data) const {
    readManifest(getOnlyElement(object, m_names.manifest,
                                "XML signature: There must exist only one Manifest element in package "
                                "specific Object element."),
                 data);
    readSignatureProperties(getOnlyElement(object, m_names.signatureProperties,
                                           "XML signature: There must exist only one SignatureProperties "
                                           "element in package specific Object element."),
                            data);
}

void DigitalSignatureSerializer::readSignatureProperties(const IndexedElement& properties,
                                                         DigitalSignatureData& data) const {
    for (const IndexedElement& element : properties.getElements(m_names.signatureProperty)) {
        SignatureProperty property;
        property.target = getRequiredAttribute(element, m_names.target,
                                               "XML signature: SignatureProperty does not have a target.");
        XercesHelper::getElementAttribute(element, m_names.id, property.id);
        data.m_content.signatureProperties.push_back(property);
        if (property.id == vocabulary::SIGNATURE_TIME_ID)
            readSignatureTime(element, data);
    }
}

/// `Format` must be there and isn't used: the form of the value shows by itself.
void DigitalSignatureSerializer::readSignatureTime(const IndexedElement& property,
                                                   DigitalSignatureData& data) const {
    const IndexedElement time =
        getRequiredElement(property, m_packageNames.signatureTime, m_packageNamespace);
    std::u16string text;
    getRequiredElementText(time, m_packageNames.format, text, m_packageNamespace);
    getRequiredElementText(time, m_packageNames.value, text, m_packageNamespace);
    data.m_signedTime = convertStringToTime(text);
}

void DigitalSignatureSerializer::readSignedInfoMethods(const IndexedElement& root,
                                                       DigitalSignatureData& data) const {
    const IndexedElement signedInfo = getRequiredElement(root, m_names.signedInfo, m_names.noNamespace);
    data.m_canonicalizationMethod = getRequiredAttribute(
        getRequiredElement(signedInfo, m_names.canonicalizationMethod, m_names.noNamespace),
        m_names.algorithm, "XML signature: CanonicalizationMethod is empty.");
    data.m_signatureMethod =
        getRequiredAttribute(getRequiredElement(signedInfo, m_names.signatureMethod, m_names.noNamespace),
                             m_names.algorithm, "XML signature: SignatureMethod is empty.");
}

} // namespace opc::model
