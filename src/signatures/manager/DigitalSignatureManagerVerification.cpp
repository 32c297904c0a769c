#include <opc/model/DigitalSignatureManager.hpp>

#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/digests/PartDigester.hpp"
#include "signatures/digests/SignedText.hpp"
#include "signatures/document/SignatureVocabulary.hpp"
#include "signatures/manager/SignatureWork.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"

#include <bedrock/certificates/CertificateValidationResults.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/AlgorithmURIMap.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

/// @file
/// Verification: the signature value first, then every digest that the signature references.

namespace opc::model {

namespace {

using bedrock::codesigning_verifier::ErrorCode;
using bedrock::codesigning_verifier::ErrorMap;
using bedrock::crypto::utils::base64Encode;

DigitalSignatureVerificationStatus makeStatus(const ErrorCode& code) {
    return DigitalSignatureVerificationStatus(bedrock::codesigning_verifier::CodesigningVerificationStatus(
        code, bedrock::certificates::CertificateValidationResults(
                  bedrock::certificates::CertificateChainStatus::Good, "")));
}

/// What was digested of an object's text: all but the namespace declaration that its tag gains from its parent
/// when it is read. The serialiser puts that first, with a blank behind it, since an object has an `Id`.
SignedText digestedText(std::u16string_view text) {
    const std::u16string declaration =
        std::u16string(u"xmlns=\"") + vocabulary::XML_SIGNATURE_NAMESPACE + u"\" ";
    const std::size_t found = text.substr(0, text.find(u'>')).find(declaration);
    if (found == std::u16string_view::npos)
        return SignedText(text);
    return SignedText(text.substr(0, found), text.substr(found + declaration.size()));
}

std::u16string digestObject(const DigitalSignatureData& data, const URI& uri) {
    const std::u16string id = uri.getFragment();
    const auto object = data.m_objects.find(id);
    if (object == data.m_objects.end())
        throw InvalidSignature("XML signature: Could not find referenced object " + toUDEString(id),
                               ErrorMap<104>());
    SignedText text = digestedText(object->second.XMLBytes);
    return base64Encode(data.computeDigest(text));
}

/// A countersignature is known by its identifier, which isn't signed: anybody could give it to another signature. The
/// signed property of the time names the identifier, too.
void throwIfNotMadeAsCountersignature(const DigitalSignatureData& data) {
    const std::u16string target = u'#' + (vocabulary::SIGNATURE_ID_PREFIX + COUNTERSIGNATURE_ID);
    const auto& properties = data.m_content.signatureProperties;
    if (std::none_of(properties.begin(), properties.end(), [&target](const SignatureProperty& property) {
            return property.id == vocabulary::SIGNATURE_TIME_ID && property.target == target;
        }))
        throw InvalidSignature("The signature wasn't made as a countersignature.", ErrorMap<104>());
}

} // namespace

DigitalSignatureVerificationStatus DigitalSignatureManager::verifySignature(const DigitalSignature& signature,
                                                                            const Bytes& publicKey) {
    return verify(signature, [&](const DigitalSignatureData& data) { return data.verifyWithKey(publicKey); });
}

DigitalSignatureVerificationStatus DigitalSignatureManager::verifySignature(
    const DigitalSignature& signature, const FingerprintStore& fingerprints,
    const CertificateValidationOptions& options, const TrustStore& trustStore) {
    return verify(signature, [&](const DigitalSignatureData& data) {
        return data.verifyWithFingerprints(fingerprints, trustStore, options);
    });
}

DigitalSignatureVerificationStatus DigitalSignatureManager::verifySignature(
    const DigitalSignature& signature, const X509Certificate& certificate,
    const FingerprintStore& fingerprints, const X509CertificateChain& chain,
    const CertificateValidationOptions& options, const TrustStore& trustStore) {
    return verify(signature, [&](const DigitalSignatureData& data) {
        return data.verifyWithCertificate(certificate, fingerprints, chain, trustStore, options);
    });
}

DigitalSignatureVerificationStatus
DigitalSignatureManager::verifyAllSignatures(const FingerprintStore& fingerprints,
                                             const CertificateValidationOptions& options,
                                             const TrustStore& trustStore) {
    ensureLoaded();
    // Each part is digested once, however many signatures cover it, and each signature is verified once, however
    // many relationships lead to it: in a small package there can be very many of both.
    PartDigesters digesters(getPackage());
    std::set<const DigitalSignatureData*> verified;
    for (const DigitalSignature& signature : m_signatures) {
        const DigitalSignatureData& data = *signature.getImpl();
        if (!verified.insert(&data).second)
            continue;
        const auto checkValue = [&](const DigitalSignatureData& checked) {
            return checked.verifyWithFingerprints(fingerprints, trustStore, options);
        };
        auto status = verify(data, checkValue, digesters);
        if (!status.isProperlyCodesigned())
            return status;
    }
    return makeStatus(ErrorMap<0>());
}

DigitalSignatureVerificationStatus DigitalSignatureManager::verify(const DigitalSignature& signature,
                                                                   const ValueCheck& checkValue) {
    ensureLoaded();
    PartDigesters digesters(getPackage());
    return verify(*signature.getImpl(), checkValue, digesters);
}

DigitalSignatureVerificationStatus DigitalSignatureManager::verify(const DigitalSignatureData& data,
                                                                   const ValueCheck& checkValue,
                                                                   PartDigesters& digesters) const {
    if (m_work > MAXIMUM_WORK)
        throw InvalidSignature(TOO_MUCH_WORK, ErrorMap<102>());
    try {
        return verifySignatureHelper(data, checkValue(data), digesters);
    } catch (const InvalidSignature& e) {
        throw stripInvalidSignatureExceptionMessage(e);
    } catch (const Exception& e) {
        throw translated<InvalidSignature>(e, e.what(), ErrorMap<-1>());
    }
}

InvalidSignature DigitalSignatureManager::stripInvalidSignatureExceptionMessage(const InvalidSignature& e) {
    return InvalidSignature("Signature is invalid: " + std::to_string(e.getErrorCode().value()),
                            e.getErrorCode());
}

DigitalSignatureVerificationStatus
DigitalSignatureManager::verifySignatureHelper(const DigitalSignatureData& data,
                                               const DigitalSignatureVerificationStatus& status,
                                               PartDigesters& digesters) const {
    if (!status.isProperlyCodesigned() && status.isErrorFromSignature())
        return status;
    DigitalSignatureVerificationStatus references = verifyReferencesAfterLoad(data, digesters);
    if (!references.isProperlyCodesigned())
        return references;
    if (status.isProperlyCodesigned() || status.isErrorFromCertificateChain())
        return status;
    throw InvalidSignature(
        "Digital signature verification failed, but the failure wasn't from the signature, "
        "references, or certificate chain.",
        status.getErrorCode());
}

DigitalSignatureVerificationStatus
DigitalSignatureManager::verifyReferencesAfterLoad(const DigitalSignatureData& data,
                                                   PartDigesters& digesters) const {
    return findDifferences(data, digesters).empty() ? makeStatus(ErrorMap<0>()) : makeStatus(ErrorMap<101>());
}

/// The references whose digests aren't those of what they lead to now.
std::vector<const Reference*> DigitalSignatureManager::findDifferences(const DigitalSignatureData& data,
                                                                       PartDigesters& digesters) const {
    if (data.m_signatureId == COUNTERSIGNATURE_ID)
        throwIfNotMadeAsCountersignature(data);
    try {
        // Each digest is computed once, however many references there are to it.
        std::map<std::u16string, std::u16string> objectDigests; // by identifier
        const auto agrees = [&](const Reference& reference) {
            if (isSameDocumentReference(reference.referenceURI)) {
                std::u16string& digest = objectDigests[reference.referenceURI.getFragment()];
                if (digest.empty())
                    digest = digestObject(data, reference.referenceURI);
                return digest == reference.digestValue;
            }
            if (reference.selectsRelationships())
                return data.computeRelationshipsDigest() == reference.digestValue;
            const DigestMethod method = AlgorithmURIMap::getDigestMethod(reference.digestMethod);
            const PartName name(reference.referenceURI.getPath());
            return base64Encode(digesters.digest(name, method)) == reference.digestValue;
        };
        std::vector<const Reference*> differences;
        for (const auto* references :
             {&data.m_content.signedInfoReferences, &data.m_content.manifestReferences})
            for (const Reference& reference : *references)
                if (!agrees(reference))
                    differences.push_back(&reference);
        return differences;
    } catch (const Exception& e) {
        throw translated<InvalidSignature>(e, e.what(), ErrorMap<104>());
    }
}

} // namespace opc::model
