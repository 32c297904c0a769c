#pragma once

#include <opc/model/DataManager.hpp>
#include <opc/model/DigitalSignature.hpp>
#include <opc/model/DigitalSignatureVerificationStatus.hpp>
#include <opc/model/Enumerator.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/RelationshipSelector.hpp>
#include <opc/model/SignatureParams.hpp>

#include <memory>
#include <string>
#include <vector>

namespace bedrock::certificates {
class CertificateValidationOptions;
class PKCS12Certificate;
class TrustStore;
class X509Certificate;
class X509CertificateChain;
} // namespace bedrock::certificates

namespace bedrock::codesigning_verifier {
class FingerprintStore;
} // namespace bedrock::codesigning_verifier

namespace opc::model {

class PackageCoverage;
class SignaturePolicy;
class SignatureVerdict;

/// Signs, verifies, countersigns and removes the digital signatures of one package (ECMA-376 Part 2, digital
/// signatures).
///
/// Create it before the package is opened, and destroy it before the package. It reads the signatures when an operation
/// first needs them. Every operation that changes something writes into the package at once, and `Package::close(false)`
/// writes the file. To sign, open the package `ReadWrite`. Use it in the thread of the package.
///
/// Keys are bytes in the encoded forms of `bedrock::crypto`. An empty trust store means the system's certificates. A
/// signature names the content types of its parts but doesn't protect them. Nor does it protect the first `<cp:keywords>`
/// element of the core properties, and which of the covered sources a relationship belongs to.
///
/// Every operation that reads signatures throws `InvalidSignature` with code 102 if a signature part can't be read, if
/// something that it signed is missing, or if its document has something that could pass for signed although the
/// signature value doesn't protect it. The next operation tries again. The functions of `Package` with `ExcludeManaged`
/// do the same. Signatures with relationships of other types, which office programs make, aren't read.
class OPC_MODEL_EXPORT DigitalSignatureManager : public DataManager {
public:
    using Bytes = std::vector<unsigned char>;
    using CertificateValidationOptions = bedrock::certificates::CertificateValidationOptions;
    using FingerprintStore = bedrock::codesigning_verifier::FingerprintStore;
    using PKCS12Certificate = bedrock::certificates::PKCS12Certificate;
    using TrustStore = bedrock::certificates::TrustStore;
    using X509Certificate = bedrock::certificates::X509Certificate;
    using X509CertificateChain = bedrock::certificates::X509CertificateChain;

    /// @throws PackageAlreadyOpen
    explicit DigitalSignatureManager(Package& managed);
    ~DigitalSignatureManager() override;

    /// @name Signing
    ///
    /// These sign parts and relationships, write the signature part and check the new signature. If a step after the
    /// writing fails, the signature stays in the package: remove it with `removeSignature`. The signature gets the next
    /// number whose names are free.
    ///
    /// Each selector must match a relationship. A selector by type selects all relationships of that type, as often as the
    /// type is named: n selectors of one type and source that has n such relationships select n² relationships. Each is
    /// kept once, but digested as often as it was selected. All different selections of the signatures of a package
    /// together may digest at most 2 GiB, for signing and for verifying. The relationship from the origin part to the
    /// countersignature is never signed.
    ///
    /// @param parts      the parts to sign; not relationships parts, which are signed through selectors
    /// @param selectors  the relationships to sign
    /// @param params     the digest, and the signature method for the size of the key
    /// @return a handle on the new signature
    /// @throws CouldNotGenerateSignature  signing fails; the text says why
    /// @throws opc::Exception  `params` has no key size, and a certificate or a bundle is given
    /// @throws bedrock::certificates::CertificateException  a revocation list in the options can't be read
    /// @throws PackageNotOpen, PackageReadOnly, PackageCreateOnly
    /// @{

    /// Signs with a key, and writes its public half into the signature.
    DigitalSignature sign(const std::vector<PartName>& parts,
                          const std::vector<RelationshipSelector>& selectors, const Bytes& privateKey,
                          const Bytes& publicKey, const SignatureParams& params);

    /// Signs with a key. The signature says nothing about the signer.
    DigitalSignature sign(const std::vector<PartName>& parts,
                          const std::vector<RelationshipSelector>& selectors, const Bytes& privateKey,
                          const SignatureParams& params);

    /// Signs with the key of a certificate, which is validated against the trust store first.
    DigitalSignature sign(const std::vector<PartName>& parts,
                          const std::vector<RelationshipSelector>& selectors, const Bytes& privateKey,
                          const X509Certificate& certificate, const X509CertificateChain& chain,
                          const CertificateValidationOptions& options, const SignatureParams& params,
                          const TrustStore& trustStore);

    /// Signs with the key and the certificates of a bundle.
    DigitalSignature sign(const std::vector<PartName>& parts,
                          const std::vector<RelationshipSelector>& selectors, const PKCS12Certificate& bundle,
                          const CertificateValidationOptions& options, const SignatureParams& params,
                          const TrustStore& trustStore);

    /// Signs all parts and relationships of the package, except those of signatures.
    DigitalSignature signPackage(const Bytes& privateKey, const SignatureParams& params);
    DigitalSignature signPackage(const PKCS12Certificate& bundle, const CertificateValidationOptions& options,
                                 const SignatureParams& params, const TrustStore& trustStore);

    /// @}

    /// @name Countersigning
    ///
    /// A package can have one countersignature. It covers all signatures that exist when it is made, and the content
    /// through them. Adding a signature later breaks it. If a covered signature is removed, the signatures of the package
    /// can't be read after the next `open`: remove the countersignature first.
    ///
    /// @throws CouldNotGenerateSignature  signing fails, the package has no signature, or it has a countersignature
    ///                                    already
    /// @throws PackageNotOpen, PackageReadOnly, PackageCreateOnly
    /// @{

    DigitalSignature countersignAllSignatures(const Bytes& privateKey, const Bytes& publicKey,
                                              const SignatureParams& params);
    DigitalSignature countersignAllSignatures(const Bytes& privateKey, const SignatureParams& params);
    DigitalSignature countersignAllSignatures(const Bytes& privateKey, const X509Certificate& certificate,
                                              const X509CertificateChain& chain,
                                              const CertificateValidationOptions& options,
                                              const SignatureParams& params, const TrustStore& trustStore);
    DigitalSignature countersignAllSignatures(const PKCS12Certificate& bundle,
                                              const CertificateValidationOptions& options,
                                              const SignatureParams& params, const TrustStore& trustStore);

    /// @}

    /// @name Finding
    /// @throws PackageNotOpen
    /// @{

    /// @return all signatures, including the countersignature: first those of the file in the order of their
    ///         relationships, then the new ones
    Enumerator<std::vector<DigitalSignature>> getSignatures();

    /// @param name  the name that `DigitalSignature::getName` returns, such as sig1
    /// @throws SignatureNotFound
    DigitalSignature getSignature(const std::u16string& name);

    /// @throws SignatureNotFound
    DigitalSignature getCountersignature();

    bool isPackageSigned() const;

    /// Whether a signature covers the part itself.
    bool isSigned(const PartName& name) const;

    bool isPackageCountersigned() const;

    /// @}

    /// @name Verifying
    ///
    /// These check the signature value, then every digest that the signature references, and then the certificate. They
    /// change nothing. A signature that doesn't hold gives a status that says why.
    ///
    /// `verifyAllSignatures` reads each part once, however many signatures cover it; `verifySignature` reads the parts at
    /// each call.
    ///
    /// @throws InvalidSignature  with code 102 and the reason: the signatures of the package together need too much
    ///                           digesting
    /// @throws InvalidSignature  with another code: the signature can't be checked. The text is "Signature is invalid: "
    ///                           and the code
    /// @{

    /// Verifies by a public key; ignores certificates.
    DigitalSignatureVerificationStatus verifySignature(const DigitalSignature& signature,
                                                       const Bytes& publicKey);

    /// Verifies by the certificate in the signature. Its fingerprint must be in `fingerprints`, or `trustStore` must
    /// trust it.
    DigitalSignatureVerificationStatus verifySignature(const DigitalSignature& signature,
                                                       const FingerprintStore& fingerprints,
                                                       const CertificateValidationOptions& options,
                                                       const TrustStore& trustStore);

    /// Verifies by a certificate that the caller provides.
    DigitalSignatureVerificationStatus
    verifySignature(const DigitalSignature& signature, const X509Certificate& certificate,
                    const FingerprintStore& fingerprints, const X509CertificateChain& chain,
                    const CertificateValidationOptions& options, const TrustStore& trustStore);

    /// Verifies each signature by its own certificate, until one doesn't hold. A package without signatures passes.
    DigitalSignatureVerificationStatus verifyAllSignatures(const FingerprintStore& fingerprints,
                                                           const CertificateValidationOptions& options,
                                                           const TrustStore& trustStore);

    /// Verifies the countersignature as `verifySignature` does.
    /// @throws SignatureNotFound
    DigitalSignatureVerificationStatus verifyCountersignature(const Bytes& publicKey);
    DigitalSignatureVerificationStatus verifyCountersignature(const FingerprintStore& fingerprints,
                                                              const CertificateValidationOptions& options,
                                                              const TrustStore& trustStore);
    DigitalSignatureVerificationStatus verifyCountersignature(const X509Certificate& certificate,
                                                              const FingerprintStore& fingerprints,
                                                              const X509CertificateChain& chain,
                                                              const CertificateValidationOptions& options,
                                                              const TrustStore& trustStore);

    /// @}

    /// @name Judging
    /// @{

    /// Decides whether the package passes by its signatures: whether it has signatures, all of them hold by the policy,
    /// and everything else that the policy requires is true. Each part is digested once for all signatures. Changes that
    /// aren't saved yet count.
    ///
    /// Unlike `verifySignature`, it doesn't throw for a signature that can't be read or checked: then the answer isn't
    /// yes, and the reasons say why.
    /// @throws PackageNotOpen
    SignatureVerdict judge(const SignaturePolicy& policy);

    /// Decides the same for one signature, as if the package had no other.
    /// @throws PackageNotOpen
    /// @throws InvalidSignature  with code 102
    SignatureVerdict judge(const DigitalSignature& signature, const SignaturePolicy& policy);

    /// @return what these signatures cover, whether they hold or not
    /// @throws InvalidSignature  with code 102
    PackageCoverage computeCoverage(const std::vector<DigitalSignature>& by) const;

    /// Whether the package has signatures in the form of office programs, which the library doesn't read.
    /// @throws PackageNotOpen
    bool hasForeignSignatures() const;

    /// @}

    /// @name Removing
    ///
    /// Removing the last signature also removes the origin part, unless signatures in another form use it. Handles on a
    /// removed signature stay readable.
    ///
    /// @throws PackageNotOpen, PackageReadOnly, PackageCreateOnly
    /// @throws CouldNotRemoveSignature  the store fails; what is removed by then stays removed
    /// @{

    /// @throws SignatureNotFound
    void removeSignature(const std::u16string& name);
    void removeSignature(const DigitalSignature& signature);

    void removeAllSignatures();

    /// Does nothing if the package has no countersignature.
    void removeCountersignature();

    /// Removes all signatures, also those that can't be read: all relationships of the two types that lead to signatures,
    /// from every source, and the parts that they lead to. A part stays if a relationship of another type leads to it,
    /// since it can be the document itself. But a part with the content type of the origin part or of signature parts
    /// stays only if that relationship belongs to signatures in the other form.
    void discardSignatures();

    /// @}

private:
    friend class SignatureCoverage;
    struct Impl;

    void doLoad() override;
    void doSave() override;
    std::vector<std::u16string> doGetManagedPartNames() const override;
    std::vector<std::u16string> doGetManagedRelationshipTypes() const override;

    /// What the operations work on, with the signatures loaded.
    Impl& loaded() const;

    std::unique_ptr<Impl> m_impl;
};

} // namespace opc::model
