#pragma once

#include "signatures/digests/SignedRelationships.hpp"
#include "signatures/document/SignatureRecords.hpp"

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <bedrock/crypto/CryptoEngine.hpp>
#include <opc/model/DigitalSignature.hpp>
#include <opc/model/Enumerator.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>
#include <opc/model/SignatureParams.hpp>

#include <boost/date_time/posix_time/ptime.hpp>

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bedrock::certificates {
class CertificateValidationOptions;
class TrustStore;
} // namespace bedrock::certificates

namespace bedrock::codesigning_verifier {
class FingerprintStore;
} // namespace bedrock::codesigning_verifier

namespace opc {
class InputStream;
}

namespace opc::model {

class DigitalSignatureVerificationStatus;
struct DataToSign;

/// One signature in memory: what was signed, how, when, with which key, and the content of its XML.
///
/// A new one is empty until `DigitalSignatureSerializer::readSignature` fills it, or a signing constructor makes a
/// complete one. After the manager has taken it, it doesn't change any more. The manager and all `DigitalSignature`
/// handles share it, so it stays readable after the signature is removed.
class DigitalSignatureData : public SignatureRecord {
public:
    using Bytes = std::vector<unsigned char>;

    /// @throws opc::Exception  the cryptographic services aren't available
    DigitalSignatureData();

    /// @name Signing
    /// Make a new signature over `data`, which is complete except for its part in the package.
    /// @throws CouldNotGenerateSignature, opc::Exception, bedrock::crypto::utils::Exception
    /// @{
    DigitalSignatureData(const std::u16string& signatureID, const Bytes& privateKey, const Bytes& publicKey,
                         const SignatureParams& params, const DataToSign& data);
    DigitalSignatureData(const std::u16string& signatureID, const Bytes& privateKey,
                         const bedrock::certificates::X509Certificate& certificate,
                         const bedrock::certificates::X509CertificateChain& chain,
                         const SignatureParams& params, const DataToSign& data);
    /// @}

    /// Shares the cryptographic engine and copies everything else.
    DigitalSignatureData(const DigitalSignatureData& other) = default;
    DigitalSignatureData& operator=(const DigitalSignatureData&) = delete;
    virtual ~DigitalSignatureData();

    /// The signature of a handle.
    static const DigitalSignatureData& of(const DigitalSignature& signature) { return *signature.m_impl; }

    static DigitalSignature makeHandle(std::shared_ptr<DigitalSignatureData> data) {
        return DigitalSignature(std::move(data));
    }

    /// "sig" and the signature's identifier.
    std::u16string getName() const;
    SignatureParams getSignatureParams() const { return m_signatureParams; }
    Bytes getSignatureValue() const { return m_signatureValue; }
    Enumerator<std::vector<PartName>> getSignedPartNames() const;
    /// @throws opc::Exception  there are more than 10,000,000
    Enumerator<std::vector<Relationship>> getSignedRelationships() const;
    boost::posix_time::ptime getSignedTime() const { return m_signedTime; }
    /// An empty certificate if the signature has none.
    bedrock::certificates::X509Certificate getCertificate() const;
    /// An empty chain if the signature has none.
    bedrock::certificates::X509CertificateChain getCertificateChain() const;

    /// The name of the signature part: "/_xmlsignatures/sig1.xml" for the identifier "1". Computed once.
    /// @throws InvalidURI, InvalidPartName  the identifier makes no part name
    PartName computeSignaturePartName();

    /// Makes the key value of a signature from a public key in any form that `bedrock::crypto` reads.
    /// @throws opc::Exception  the bytes aren't a key of the size in the signature's parameters
    void setKeyValue(const Bytes& publicKey);

    /// @name Digests by the signature's own method
    /// @throws opc::Exception  the digest can't be computed
    /// @{
    Bytes computeDigest(InputStream& bytes) const;

    /// The digest of all relationships of a signature together, in Base64. Signatures with the same relationships share
    /// the result.
    const std::u16string& computeRelationshipsDigest(const SignedRelationships& relationships) const;
    /// @}

    /// @name Checking the signature value
    /// @throws InvalidSignature  the key or certificate can't be used, or doesn't fit the signature
    /// @{
    DigitalSignatureVerificationStatus verifyWithKey(const Bytes& publicKey) const;

    /// By the key in the signature itself.
    DigitalSignatureVerificationStatus verifyWithKeyValue() const;

    /// By the certificate in the signature or, if there is none and the store allows it, by the key in it.
    DigitalSignatureVerificationStatus
    verifyWithFingerprints(const bedrock::codesigning_verifier::FingerprintStore& fingerprints,
                           const bedrock::certificates::TrustStore& trustStore,
                           const bedrock::certificates::CertificateValidationOptions& options) const;

    DigitalSignatureVerificationStatus
    verifyWithCertificate(const bedrock::certificates::X509Certificate& certificate,
                          const bedrock::codesigning_verifier::FingerprintStore& fingerprints,
                          const bedrock::certificates::X509CertificateChain& chain,
                          const bedrock::certificates::TrustStore& trustStore,
                          const bedrock::certificates::CertificateValidationOptions& options) const;
    /// @}

    /// Prints every record with a label, for people.
    void prettyPrint(std::ostream& stream) const;

    std::shared_ptr<bedrock::crypto::CryptoEngine> m_cryptoEngine;
    std::vector<PartName> m_signedPartNames;
    std::shared_ptr<const SignedRelationships> m_signedRelationships; ///< never null
    std::optional<PartName> m_signaturePartName;

private:
    DigitalSignatureData(const std::u16string& signatureID, const SignatureParams& params,
                         const DataToSign& data);

    void checkKeys(const Bytes& privateKey, const Bytes& publicKey) const;
    void buildContent(const DataToSign& data);
    void addPartReferences(const DataToSign& data);
    void addRelationshipReferences(const DataToSign& data);
    void addSignatureTime();
    void signContent(const Bytes& privateKey);

    std::shared_ptr<bedrock::crypto::DigestEngine> createDigestEngine() const;
    std::shared_ptr<bedrock::crypto::RSASigner> createSigner(const Bytes& privateKey) const;
    std::shared_ptr<bedrock::crypto::RSAVerifier> createVerifier(std::uint64_t bits,
                                                                 const Bytes& publicKey) const;

    void throwIfKeySizeDiffers(std::uint64_t bits) const;
    std::uint64_t requireKeySize(const bedrock::certificates::X509Certificate& certificate) const;
};

} // namespace opc::model
