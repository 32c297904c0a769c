#include "signatures/algorithms/CryptoErrors.hpp"
#include "signatures/algorithms/RsaKeys.hpp"
#include "signatures/algorithms/SecretBytes.hpp"
#include "signatures/manager/DigitalSignatureManagerImpl.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/PKCS12Certificate.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/codesigning_verifier/FingerprintStore.hpp>
#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <opc/model/Errors.hpp>

/// @file
/// Signing with keys, a certificate or a bundle: the new signature is written at once and then checked.

namespace opc::model {

namespace {

using bedrock::certificates::CertificateChainStatus;
using bedrock::certificates::TrustStore;

Selection requireSelection(const std::vector<PartName>& parts,
                           const std::vector<RelationshipSelector>& selectors) {
    if (parts.empty() && selectors.empty())
        throw CouldNotGenerateSignature("No parts or relationships provided for signing.");
    return {parts, selectors};
}

void throwIfNoSigningKey(const std::vector<unsigned char>& privateKey) {
    if (privateKey.empty())
        throw CouldNotGenerateSignature("The signing key is empty.");
}

/// Checks the signer's certificate, and returns the store to continue with: an empty one becomes that of the system's
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

/// The exception for a new signature that doesn't hold.
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

void throwIfNoVerificationKey(const std::vector<unsigned char>& publicKey) {
    if (publicKey.empty())
        throw CouldNotGenerateSignature("The verification key is empty.");
}

DigitalSignature DigitalSignatureManager::sign(const std::vector<PartName>& parts,
                                               const std::vector<RelationshipSelector>& selectors,
                                               const Bytes& privateKey, const Bytes& publicKey,
                                               const SignatureParams& params) {
    Impl& impl = loaded();
    const Selection selection = requireSelection(parts, selectors);
    throwIfNoVerificationKey(publicKey);
    return impl.sign(selection, privateKey, publicKey, params);
}

DigitalSignature DigitalSignatureManager::sign(const std::vector<PartName>& parts,
                                               const std::vector<RelationshipSelector>& selectors,
                                               const Bytes& privateKey, const SignatureParams& params) {
    Impl& impl = loaded();
    return impl.sign(requireSelection(parts, selectors), privateKey, Bytes(), params);
}

DigitalSignature DigitalSignatureManager::sign(const std::vector<PartName>& parts,
                                               const std::vector<RelationshipSelector>& selectors,
                                               const Bytes& privateKey, const X509Certificate& certificate,
                                               const X509CertificateChain& chain,
                                               const CertificateValidationOptions& options,
                                               const SignatureParams& params, const TrustStore& trustStore) {
    Impl& impl = loaded();
    return impl.sign(requireSelection(parts, selectors), privateKey, certificate, chain, options, params,
                     trustStore);
}

DigitalSignature DigitalSignatureManager::sign(const std::vector<PartName>& parts,
                                               const std::vector<RelationshipSelector>& selectors,
                                               const PKCS12Certificate& bundle,
                                               const CertificateValidationOptions& options,
                                               const SignatureParams& params, const TrustStore& trustStore) {
    Impl& impl = loaded();
    return impl.sign(requireSelection(parts, selectors), bundle, options, params, trustStore);
}

DigitalSignature DigitalSignatureManager::Impl::sign(const Selection& selection, const Bytes& privateKey,
                                                     const Bytes& publicKey, const SignatureParams& params) {
    throwIfNotOpenForModify();
    throwIfNoSigningKey(privateKey);
    return translateSigningFailures([&] {
        const DataToSign data = gather(selection, params);
        const auto signature =
            std::make_shared<DigitalSignatureData>(takeID(selection), privateKey, publicKey, params, data);
        add(signature);
        if (!publicKey.empty() && !signature->verifyWithKeyValue().isProperlyCodesigned())
            throw CouldNotGenerateSignature(
                "The verification key is invalid since the signature doesn't verify "
                "correctly after signing.");
        return DigitalSignatureData::makeHandle(signature);
    });
}

DigitalSignature DigitalSignatureManager::Impl::sign(const Selection& selection, const Bytes& privateKey,
                                                     const X509Certificate& certificate,
                                                     const X509CertificateChain& chain,
                                                     const CertificateValidationOptions& options,
                                                     const SignatureParams& params,
                                                     const TrustStore& trustStore) {
    throwIfNotOpenForModify();
    throwIfNoSigningKey(privateKey);
    if (certificate.empty())
        throw CouldNotGenerateSignature("The verification certificate is empty.");
    const TrustStore store = requireValidCertificate(certificate, chain, options, params, trustStore);
    return translateSigningFailures([&] {
        const DataToSign data = gather(selection, params);
        const auto signature = std::make_shared<DigitalSignatureData>(takeID(selection), privateKey,
                                                                      certificate, chain, params, data);
        add(signature);
        FingerprintStore fingerprints; // the signer's own certificate counts as known
        fingerprints.addFingerprint(certificate.getSHA256Fingerprint());
        throwIfNotVerified(
            signature->verifyWithCertificate(certificate, fingerprints, chain, store, options));
        return DigitalSignatureData::makeHandle(signature);
    });
}

DigitalSignature DigitalSignatureManager::Impl::sign(const Selection& selection,
                                                     const PKCS12Certificate& bundle,
                                                     const CertificateValidationOptions& options,
                                                     const SignatureParams& params,
                                                     const TrustStore& trustStore) {
    throwIfNotOpenForModify();
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
        return sign(selection, *privateKey, certificate, bundle.getCAChain(), options, params, trustStore);
    } catch (const bedrock::certificates::CertificateException& e) {
        throw CouldNotGenerateSignature(std::string("The given PKCS12 bundle is invalid.") + e.what());
    } catch (const bedrock::crypto::utils::Exception& e) {
        throw CouldNotGenerateSignature(
            std::string("Invalid Signature parameters or PKCS12 Bundle provided.") + e.what());
    }
}

DataToSign DigitalSignatureManager::Impl::gather(const Selection& selection,
                                                 const SignatureParams& params) const {
    return gatherDataToSign(package, selection, params.getDigestMethod(), list.signatures);
}

} // namespace opc::model
