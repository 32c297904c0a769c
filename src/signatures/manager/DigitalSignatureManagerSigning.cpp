#include <opc/model/DigitalSignatureManager.hpp>

#include "signatures/algorithms/CryptoErrors.hpp"
#include "signatures/algorithms/RsaKeys.hpp"
#include "signatures/algorithms/SecretBytes.hpp"
#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/document/DigitalSignatureSerializer.hpp"
#include "signatures/document/SignatureCost.hpp"
#include "signatures/signature/DataToSign.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "xml/DocumentBudget.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/PKCS12Certificate.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>

/// @file
/// Signing with keys, a certificate or a bundle: the new signature is written at once and then checked.

namespace opc::model {

namespace {

using bedrock::certificates::CertificateChainStatus;
using bedrock::certificates::TrustStore;

void throwIfNothingToSign(const std::vector<PartName>& parts,
                          const std::vector<RelationshipSelector>& selectors) {
    if (parts.empty() && selectors.empty())
        throw CouldNotGenerateSignature("No parts or relationships provided for signing.");
}

void throwIfNoSigningKey(const std::vector<unsigned char>& privateKey) {
    if (privateKey.empty())
        throw CouldNotGenerateSignature("The signing key is empty.");
}

/// Checks the signer's certificate, and gives the store to go on with: an empty one takes in the system's
/// certificates.
TrustStore requireValidCertificate(const bedrock::certificates::X509Certificate& certificate,
                                   const bedrock::certificates::X509CertificateChain& chain,
                                   const bedrock::certificates::CertificateValidationOptions& options,
                                   const SignatureParams& params, const TrustStore& trustStore) {
    const std::string INVALID = "The verification certificate is invalid.";
    TrustStore store = trustStore;
    try {
        const std::uint64_t expected = signatureMethodToKeySize(params.getSignatureMethod());
        if (certificate.getKeySize() != expected)
            throw CouldNotGenerateSignature("Verification certificate corresponds to key size " +
                                            std::to_string(certificate.getKeySize()) +
                                            " but signature params specify a key size of " +
                                            std::to_string(expected) + " \n");
        if (store.empty())
            store.addSystemCertificates(TrustStore::Usage::Signing, false);
        const auto results = certificate.validateCertificate(chain, options, store);
        if (results.getCertificateChainStatus() != CertificateChainStatus::Good)
            throw CouldNotGenerateSignature(INVALID + results.getValidationErrorString());
    } catch (const bedrock::certificates::X509CertificateException& e) {
        throw CouldNotGenerateSignature(INVALID + e.what());
    }
    return store;
}

/// What a new signature that doesn't hold is refused with.
void throwIfNotVerified(const DigitalSignatureVerificationStatus& status) {
    if (status.isProperlyCodesigned())
        return;
    if (status.isErrorFromSignature())
        throw CouldNotGenerateSignature("The signature doesn't verify correctly with the given certificate.");
    if (!status.isErrorFromCertificateChain())
        throw CouldNotGenerateSignature("Generated signature is incorrect. Error code is '" +
                                        std::to_string(status.getErrorCode().value()) + "'");
    throw CouldNotGenerateSignature("The given certificate chain is incorrect. Error=" +
                                    status.getCodesigningVerificationStatus()
                                        .getCertificateValidationResults()
                                        .getValidationErrorString());
}

} // namespace

DigitalSignature DigitalSignatureManager::sign(const std::vector<PartName>& parts,
                                               const std::vector<RelationshipSelector>& selectors,
                                               const Bytes& privateKey, const Bytes& publicKey,
                                               const SignatureParams& params) {
    ensureLoaded();
    throwIfNothingToSign(parts, selectors);
    throwIfNoVerificationKey(publicKey);
    return signHelper(privateKey, publicKey, params, parts, selectors, false);
}

DigitalSignature DigitalSignatureManager::sign(const std::vector<PartName>& parts,
                                               const std::vector<RelationshipSelector>& selectors,
                                               const Bytes& privateKey, const SignatureParams& params) {
    ensureLoaded();
    throwIfNothingToSign(parts, selectors);
    return signHelper(privateKey, Bytes(), params, parts, selectors, false);
}

DigitalSignature DigitalSignatureManager::sign(const std::vector<PartName>& parts,
                                               const std::vector<RelationshipSelector>& selectors,
                                               const Bytes& privateKey, const X509Certificate& certificate,
                                               const X509CertificateChain& chain,
                                               const CertificateValidationOptions& options,
                                               const SignatureParams& params, const TrustStore& trustStore) {
    ensureLoaded();
    throwIfNothingToSign(parts, selectors);
    return signHelper(privateKey, certificate, chain, trustStore, options, params, parts, selectors, false);
}

DigitalSignature DigitalSignatureManager::sign(const std::vector<PartName>& parts,
                                               const std::vector<RelationshipSelector>& selectors,
                                               const PKCS12Certificate& bundle,
                                               const CertificateValidationOptions& options,
                                               const SignatureParams& params, const TrustStore& trustStore) {
    ensureLoaded();
    throwIfNothingToSign(parts, selectors);
    return signHelper(bundle, trustStore, options, params, parts, selectors, false);
}

void DigitalSignatureManager::throwIfNoVerificationKey(const Bytes& publicKey) {
    if (publicKey.empty())
        throw CouldNotGenerateSignature("The verification key is empty.");
}

DigitalSignature DigitalSignatureManager::signHelper(const Bytes& privateKey, const Bytes& publicKey,
                                                     const SignatureParams& params,
                                                     const std::vector<PartName>& parts,
                                                     const std::vector<RelationshipSelector>& selectors,
                                                     bool countersign) {
    throwIfPackageNotOpenForModify();
    throwIfNoSigningKey(privateKey);
    return translateSigningFailures([&] {
        const DataToSign data = computeDataToSign(parts, selectors, params);
        const DigitalSignature signature = addSignature(std::make_shared<DigitalSignatureData>(
            takeSignatureID(countersign), privateKey, publicKey, params, data));
        if (!publicKey.empty() && !signature.getImpl()->verifyWithKeyValue().isProperlyCodesigned())
            throw CouldNotGenerateSignature(
                "The verification key is invalid since the signature doesn't verify "
                "correctly after signing.");
        return signature;
    });
}

DigitalSignature
DigitalSignatureManager::signHelper(const Bytes& privateKey, const X509Certificate& certificate,
                                    const X509CertificateChain& chain, const TrustStore& trustStore,
                                    const CertificateValidationOptions& options,
                                    const SignatureParams& params, const std::vector<PartName>& parts,
                                    const std::vector<RelationshipSelector>& selectors, bool countersign) {
    throwIfPackageNotOpenForModify();
    throwIfNoSigningKey(privateKey);
    if (certificate.empty())
        throw CouldNotGenerateSignature("The verification certificate is empty.");
    const TrustStore store = requireValidCertificate(certificate, chain, options, params, trustStore);
    return translateSigningFailures([&] {
        const DataToSign data = computeDataToSign(parts, selectors, params);
        const DigitalSignature signature = addSignature(std::make_shared<DigitalSignatureData>(
            takeSignatureID(countersign), privateKey, certificate, chain, params, data));
        FingerprintStore fingerprints; // the signer's own certificate counts as known
        fingerprints.addFingerprint(certificate.getSHA256Fingerprint());
        throwIfNotVerified(
            signature.getImpl()->verifyWithCertificate(certificate, fingerprints, chain, store, options));
        return signature;
    });
}

DigitalSignature
DigitalSignatureManager::signHelper(const PKCS12Certificate& bundle, const TrustStore& trustStore,
                                    const CertificateValidationOptions& options,
                                    const SignatureParams& params, const std::vector<PartName>& parts,
                                    const std::vector<RelationshipSelector>& selectors, bool countersign) {
    throwIfPackageNotOpenForModify();
    try {
        const X509Certificate& certificate = bundle.getCertificate();
        const SecretBytes privateExponent(bundle.getPrivateExponent());
        if (privateExponent->empty())
            throw CouldNotGenerateSignature("The given PKCS12 bundle is invalid. No private key found.");
        if (certificate.empty())
            throw CouldNotGenerateSignature("The given PKCS12 bundle is invalid. No certificate found.");
        const bedrock::crypto::CryptoEngine engine(
            std::make_shared<bedrock::crypto::cryptopp::CryptoProvider>());
        const SecretBytes privateKey(
            encodeRsaPrivateKey(engine, signatureMethodToKeySize(params.getSignatureMethod()),
                                certificate.getModulus(), *privateExponent, certificate.getPublicExponent()));
        return signHelper(*privateKey, certificate, bundle.getCAChain(), trustStore, options, params, parts,
                          selectors, countersign);
    } catch (const bedrock::certificates::CertificateException& e) {
        throw CouldNotGenerateSignature(std::string("The given PKCS12 bundle is invalid.") + e.what());
    } catch (const bedrock::crypto::utils::Exception& e) {
        throw CouldNotGenerateSignature(
            std::string("Invalid Signature parameters or PKCS12 Bundle provided.") + e.what());
    }
}

std::u16string DigitalSignatureManager::takeSignatureID(bool countersign) {
    return countersign ? COUNTERSIGNATURE_ID : getNextSignatureID();
}

DigitalSignature DigitalSignatureManager::addSignature(std::shared_ptr<DigitalSignatureData> data) {
    const DigitalSignature signature(std::move(data));
    const Bytes document = composeSignaturePart(*signature.getImpl());
    m_signatures.push_back(signature);
    try {
        saveSignaturePart(signature, document);
    } catch (const InvalidRelationshipContent&) { // the package refuses it: nothing has been made
        m_signatures.pop_back();
        throw;
    } catch (const InvalidContentTypeStream&) { // the same
        m_signatures.pop_back();
        throw;
    }
    return signature;
}

/// The content of the part, which has been read again: what couldn't be, for a limit, isn't written.
DigitalSignatureManager::Bytes
DigitalSignatureManager::composeSignaturePart(DigitalSignatureData& data) const {
    Bytes document;
    ByteArrayOutAdaptor output(document);
    m_serializer->writeSignature(data, output);
    DigitalSignatureData again;
    again.m_share = std::make_shared<DocumentShare>(getPackage().getDocumentBudget(), &XmlLimits::signature);
    ByteArrayInAdaptor input(document);
    MeteredStream metered(input, *again.m_share, cost::BYTES_PER_ELEMENT);
    try {
        m_serializer->readSignature(metered, again);
    } catch (const InvalidPartContent& e) {
        throw translated<CouldNotGenerateSignature>(
            e, std::string("The signature couldn't be loaded again: ") + e.what());
    }
    data.m_share = std::move(again.m_share);
    return document;
}

void DigitalSignatureManager::saveSignaturePart(const DigitalSignature& signature, const Bytes& document) {
    const PartName name = getSignaturePartName(signature.getName());
    if (getPackage().hasPart(name))
        throw CouldNotGenerateSignature(
            "Internal Error: New signature should not have the same name as an existing one.");
    Part origin = createOrFetchOriginPart();
    try {
        const Part part = getPackage().createPart(name, getSignaturePartContentType(), StandardPartInfo());
        const DigitalSignatureData& data = *signature.getImpl();
        origin.createInternalRelationship(getSignatureRelationshipType(), name.getURI(),
                                          getSignatureRelationshipID(data.m_signatureId));
        part.getOutputStream().write(document.data(), document.size());
    } catch (const InvalidPartName& e) {
        throw CouldNotGenerateSignature(std::string("Unable to create signature part. ") + e.what());
    }
}

Part DigitalSignatureManager::createOrFetchOriginPart() {
    try {
        std::optional<Part> origin = findOriginPart();
        if (origin)
            origin->throwIfRelationshipsFixed();
        if (findOriginURI(getPackage()))
            return *origin;
        getPackage().throwIfRelationshipsFixed();
        if (!origin)
            origin = getPackage().createPart(PartName(getOriginPartURI()), getOriginPartContentType(),
                                             StandardPartInfo());
        getPackage().createInternalRelationship(getOriginRelationshipType(), origin->getName().getURI());
        return *origin;
    } catch (const InvalidPartName& e) {
        throw CouldNotGenerateSignature(std::string("Could not create/fetch signature origin part. ") +
                                        e.what());
    }
}

} // namespace opc::model
