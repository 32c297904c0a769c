#include "signatures/signature/DigitalSignatureData.hpp"

#include "signatures/algorithms/CryptoErrors.hpp"
#include "signatures/algorithms/RsaKeys.hpp"
#include "signatures/digests/SignedText.hpp"
#include "signatures/document/SignatureTexts.hpp"
#include "signatures/document/SignatureVocabulary.hpp"
#include "signatures/signature/DataToSign.hpp"

#include <bedrock/crypto/RSASigner.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/AlgorithmURIMap.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PackageHelper.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <chrono>
#include <map>

/// @file
/// How a new signature is made: builds its content from what it covers, and signs it.

namespace opc::model {

namespace {

using namespace vocabulary::signatures;
using bedrock::crypto::utils::base64Encode;

/// The URI of a reference to a part: its name, and its content type as a query.
URI toReferenceURI(const std::u16string& partName, const ContentType& contentType) {
    return URI(partName + CONTENT_TYPE_QUERY.text() + contentType.toString());
}

void checkDataToSign(const std::u16string& signatureID, const DataToSign& data) {
    if (data.partNames.empty() && data.relationships->empty() && data.selectors.empty())
        throw CouldNotGenerateSignature("Nothing to sign.");
    if (signatureID.empty())
        throw CouldNotGenerateSignature("Internal error: Empty signature ID received.");
    if (!data.partNames.empty() && (data.digests.empty() || data.contentTypes.empty()))
        throw CouldNotGenerateSignature(
            "Internal error: Signed parts' digests or content types cannot be empty.");
}

boost::posix_time::ptime signingTimeOf(const SignatureParams& params) {
    const auto time = params.getSigningTime();
    if (!time)
        return boost::posix_time::microsec_clock::universal_time();
    const auto since = std::chrono::duration_cast<std::chrono::microseconds>(time->time_since_epoch());
    return {boost::gregorian::date(1970, 1, 1), boost::posix_time::microseconds(since.count())};
}

} // namespace

DigitalSignatureData::DigitalSignatureData(const std::u16string& signatureID, const SignatureParams& params,
                                           const DataToSign& data)
    : DigitalSignatureData() {
    m_signedPartNames = data.partNames;
    m_signedRelationships = data.relationships;
    m_signatureParams = params;
    m_signatureId = signatureID;
}

DigitalSignatureData::DigitalSignatureData(const std::u16string& signatureID, const Bytes& privateKey,
                                           const Bytes& publicKey, const SignatureParams& params,
                                           const DataToSign& data)
    : DigitalSignatureData(signatureID, params, data) {
    checkKeys(privateKey, publicKey);
    checkDataToSign(signatureID, data);
    buildContent(data);
    signContent(privateKey);
    if (!publicKey.empty())
        setKeyValue(publicKey);
    computeSignaturePartName();
}

DigitalSignatureData::DigitalSignatureData(const std::u16string& signatureID, const Bytes& privateKey,
                                           const bedrock::certificates::X509Certificate& certificate,
                                           const bedrock::certificates::X509CertificateChain& chain,
                                           const SignatureParams& params, const DataToSign& data)
    : DigitalSignatureData(signatureID, params, data) {
    checkDataToSign(signatureID, data);
    if (!certificate.isValidForDigitalSigning())
        throw CouldNotGenerateSignature(
            "The input certificate's purpose is not intended for digital signatures.");
    buildContent(data);
    signContent(privateKey);
    m_certificate = certificate;
    m_certificateChain = chain;
    computeSignaturePartName();
}

void DigitalSignatureData::checkKeys(const Bytes& privateKey, const Bytes& publicKey) const {
    if (publicKey.empty())
        return;
    const std::uint64_t bits = signatureMethodToKeySize(m_signatureParams.getSignatureMethod());
    const auto refuse = [bits](const std::string& purpose) {
        throw Exception("Invalid key was provided. " + std::to_string(bits) + "-bit key was expected for " +
                        purpose);
    };
    if (privateKey.size() > bits || privateKey.size() < bits / 2)
        refuse("signing");
    if (publicKey.size() > bits / 4 || publicKey.size() < bits / 8)
        refuse("verification "); // the blank at its end is part of the message
}

void DigitalSignatureData::buildContent(const DataToSign& data) {
    m_namespace = vocabulary::signatures::NAMESPACE.text();
    m_canonicalizationMethod = AlgorithmURIMap::getAlgorithmURI(AlgorithmTag::TagC14N);
    m_signatureMethod = AlgorithmURIMap::getAlgorithmURI(m_signatureParams.getDigestMethod(),
                                                         m_signatureParams.getSignatureMethod());
    addPartReferences(data);
    addRelationshipReferences(data);
    addSignatureTime();

    SignatureObject object;
    object.objectID = PACKAGE_OBJECT_ID.text();
    object.XMLBytes = writePackageObject(m_content);
    Reference reference;
    reference.referenceURI = URI(u"#" + object.objectID);
    reference.referenceType = OBJECT_TYPE.text();
    reference.digestMethod = AlgorithmURIMap::getAlgorithmURI(m_signatureParams.getDigestMethod());
    SignedText signedText(object.XMLBytes);
    reference.digestValue = base64Encode(computeDigest(signedText));
    m_content.signedInfoReferences.push_back(std::move(reference));
    m_objects.emplace(PACKAGE_OBJECT_ID.text(), std::move(object));

    m_content.signedInfoXML = writeSignedInfo(*this);
}

void DigitalSignatureData::addPartReferences(const DataToSign& data) {
    const std::u16string digestMethod = AlgorithmURIMap::getAlgorithmURI(m_signatureParams.getDigestMethod());
    for (std::size_t i = 0; i < data.partNames.size(); ++i) {
        Reference reference;
        reference.referenceURI = toReferenceURI(data.partNames[i].toString(), data.contentTypes.at(i));
        reference.digestMethod = digestMethod;
        reference.digestValue = base64Encode(data.digests.at(i));
        m_content.manifestReferences.push_back(std::move(reference));
    }
}

void DigitalSignatureData::addRelationshipReferences(const DataToSign& data) {
    if (data.selectors.empty())
        return;
    std::map<URI, Reference> references;
    auto recent = references.end(); // the next source is mostly this one or a later one
    for (const RelationshipSelector& selector : data.selectors) {
        recent = references.try_emplace(recent, selector.getSourceURI());
        Reference& reference = recent->second;
        auto& criteria = selector.getSelectorType() == RelationshipSelectorType::SourceId
                             ? reference.relationshipReferences
                             : reference.relationshipGroupReferences;
        criteria.push_back(selector.getSelectionCriteria());
    }
    const ContentType contentType = PackageHelper::getRelationshipContentType();
    const std::u16string digestMethod = AlgorithmURIMap::getAlgorithmURI(m_signatureParams.getDigestMethod());
    const std::u16string digestValue = computeRelationshipsDigest(*m_signedRelationships);
    for (auto& [source, reference] : references) {
        reference.referenceURI = toReferenceURI(PartName(source).getRelationshipPartName(), contentType);
        reference.digestMethod = digestMethod;
        reference.digestValue = digestValue;
        m_content.manifestReferences.push_back(std::move(reference));
    }
}

void DigitalSignatureData::addSignatureTime() {
    m_signedTime = signingTimeOf(m_signatureParams);
    SignatureProperty property;
    property.target = u"#" + SIGNATURE_ID_PREFIX.text() + m_signatureId;
    property.id = SIGNATURE_TIME_ID.text();
    property.format = SIGNATURE_TIME_FORMAT.text();
    property.value = convertTimeToString(m_signedTime);
    m_content.signatureProperties.push_back(std::move(property));
}

void DigitalSignatureData::signContent(const Bytes& privateKey) {
    m_signatureValue =
        createSigner(privateKey)->sign(toSignedBytes(m_content.signedInfoXML), createDigestEngine());
    m_signatureValueInXML = base64Encode(m_signatureValue);
}

std::shared_ptr<bedrock::crypto::RSASigner>
DigitalSignatureData::createSigner(const Bytes& privateKey) const {
    const std::uint64_t bits = rsaKeySize(m_signatureParams.getSignatureMethod());
    auto signer = translateCryptoFailures([&] { return createRsaSigner(*m_cryptoEngine, bits, privateKey); });
    if (!signer)
        throw Exception("Unable to determine the correct key size from the signature data.");
    return signer;
}

} // namespace opc::model
