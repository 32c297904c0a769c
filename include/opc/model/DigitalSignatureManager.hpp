#pragma once

#include <opc/model/ContentType.hpp>
#include <opc/model/DataManager.hpp>
#include <opc/model/DigitalSignature.hpp>
#include <opc/model/DigitalSignatureVerificationStatus.hpp>
#include <opc/model/Enumerator.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/PackageCoverage.hpp>
#include <opc/model/Part.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>
#include <opc/model/RelationshipSelector.hpp>
#include <opc/model/SignatureParams.hpp>
#include <opc/model/SignaturePolicy.hpp>
#include <opc/model/SignatureVerdict.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
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

class DigitalSignatureData;
class DigitalSignatureSerializer;
class InvalidSignature;
struct DataToSign;
class PartDigesters;
class SelectableRelationships;
class SignedRelationships;
struct Reference;

/// The digital signatures of one package (ECMA-376 Part 2, digital signatures): signs, verifies,
/// countersigns, removes.
///
/// Made on a package that isn't open yet, and destroyed before it. Signatures are read at the first
/// operation that needs them, and every operation that changes something writes to the package at once;
/// `Package::close(false)` then makes it final. A package can be signed when it is open for reading and
/// writing. One thread at a time, with the package.
///
/// Keys are bytes in the encoded forms of `bedrock::crypto`. An empty trust store stands for the system's
/// certificates. A signature names the content types of its parts but doesn't protect them, nor the first
/// `<cp:keywords>` element of the core properties, nor which of the covered sources a relationship belongs to.
///
/// Every operation that reads signatures raises `InvalidSignature` with code 102 if a signature part can't
/// be read, if something that it signed is missing, or if something could pass for signed that its signature
/// value doesn't protect; the next operation tries again. So do `Package`'s operations that leave out what
/// managers keep. Signatures that hang on relationships of other types, such as office programs make, aren't
/// seen.
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
    /// Signs parts and relationships, writes the signature part and checks the new signature. What fails
    /// behind the writing leaves the signature in place: `removeSignature` takes it out. The signature has the next
    /// number whose names nothing else in the package has.
    ///
    /// Each selector must match a relationship. One by type takes every relationship of that type, once for each time it is named: n
    /// relationships of one type and source, each with a selector of its own, count n² times. Each is held
    /// once, but digested as often as it counts: what all different selections of a package's signatures
    /// take to digest ends at 2 GiB, in signing as in verifying. The relationship from the origin part to
    /// the countersignature is never signed.
    ///
    /// @param parts      the parts to sign; not relationships parts, which are signed through selectors
    /// @param selectors  the relationships to sign
    /// @param params     digest and signature method, the latter of the key's size
    /// @throws CouldNotGenerateSignature  whatever fails; the text says what
    /// @throws opc::Exception  with a certificate or a bundle, if `params` have no size of key
    /// @throws bedrock::certificates::CertificateException  if a revocation list of the options can't be read
    /// @throws PackageNotOpen, PackageReadOnly, PackageCreateOnly
    /// @{

    /// With a key, whose public half goes into the signature.
    DigitalSignature sign(const std::vector<PartName>& parts,
                          const std::vector<RelationshipSelector>& selectors, const Bytes& privateKey,
                          const Bytes& publicKey, const SignatureParams& params);

    /// With a key alone: the signature tells nothing of who made it.
    DigitalSignature sign(const std::vector<PartName>& parts,
                          const std::vector<RelationshipSelector>& selectors, const Bytes& privateKey,
                          const SignatureParams& params);

    /// With a certificate, which is checked against the trust store first.
    DigitalSignature sign(const std::vector<PartName>& parts,
                          const std::vector<RelationshipSelector>& selectors, const Bytes& privateKey,
                          const X509Certificate& certificate, const X509CertificateChain& chain,
                          const CertificateValidationOptions& options, const SignatureParams& params,
                          const TrustStore& trustStore);

    /// With the key and the certificates of a bundle.
    DigitalSignature sign(const std::vector<PartName>& parts,
                          const std::vector<RelationshipSelector>& selectors, const PKCS12Certificate& bundle,
                          const CertificateValidationOptions& options, const SignatureParams& params,
                          const TrustStore& trustStore);

    /// All parts and relationships of the package but those of signatures.
    DigitalSignature signPackage(const Bytes& privateKey, const SignatureParams& params);
    DigitalSignature signPackage(const PKCS12Certificate& bundle, const CertificateValidationOptions& options,
                                 const SignatureParams& params, const TrustStore& trustStore);

    /// @}

    /// @name Countersigning
    ///
    /// A package can have one countersignature. It covers all signatures that stand when it is made, and
    /// the content through them. A signature added later breaks it; a covered one that is removed makes the
    /// package's signatures unreadable at the next open: remove the countersignature first.
    ///
    /// @throws CouldNotGenerateSignature  also if there is no signature, or a countersignature already
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

    /// All signatures, the countersignature among them, in the order of their relationships and then of
    /// signing.
    Enumerator<std::vector<DigitalSignature>> getSignatures();

    /// @param name  as `DigitalSignature::getName` gives it, such as sig1
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
    /// Checks the signature value and then every digest that the signature references. Changes nothing.
    ///
    /// `verifyAllSignatures` reads each part once, however many signatures cover it; `verifySignature` reads
    /// them anew each time.
    ///
    /// @throws InvalidSignature  with code 102 and its reason, if the signatures of the package together take
    ///                           too much to digest
    /// @throws InvalidSignature  the signature can't be checked. The text is "Signature is invalid: " and
    ///                           the code
    /// @{

    /// By a public key; no certificate is looked at.
    DigitalSignatureVerificationStatus verifySignature(const DigitalSignature& signature,
                                                       const Bytes& publicKey);

    /// By the certificate in the signature, which `fingerprints` or `trustStore` must vouch for.
    DigitalSignatureVerificationStatus verifySignature(const DigitalSignature& signature,
                                                       const FingerprintStore& fingerprints,
                                                       const CertificateValidationOptions& options,
                                                       const TrustStore& trustStore);

    /// By a certificate of the caller's.
    DigitalSignatureVerificationStatus
    verifySignature(const DigitalSignature& signature, const X509Certificate& certificate,
                    const FingerprintStore& fingerprints, const X509CertificateChain& chain,
                    const CertificateValidationOptions& options, const TrustStore& trustStore);

    /// Each signature by its own certificate, until one doesn't hold. A package without signatures passes.
    DigitalSignatureVerificationStatus verifyAllSignatures(const FingerprintStore& fingerprints,
                                                           const CertificateValidationOptions& options,
                                                           const TrustStore& trustStore);

    /// As `verifySignature` on the countersignature.
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

    /// The verdict on which a gate can rely: whether there are signatures, all of them hold by the policy,
    /// and nothing that the policy asks for is missing. Each part is digested once for all signatures. The
    /// package is judged as it stands, changes that aren't saved yet included.
    ///
    /// Unlike `verifySignature` it raises nothing for a signature that can't be read or checked: the answer
    /// isn't yes then, and the reasons say why.
    /// @throws PackageNotOpen
    SignatureVerdict judge(const SignaturePolicy& policy);

    /// The same of one signature alone, as if there were no other.
    /// @throws PackageNotOpen
    /// @throws InvalidSignature  with code 102
    SignatureVerdict judge(const DigitalSignature& signature, const SignaturePolicy& policy);

    /// What these signatures cover, whether they hold or not.
    /// @throws InvalidSignature  with code 102
    PackageCoverage computeCoverage(const std::vector<DigitalSignature>& by) const;

    /// Whether the package has signatures of the form that office programs make, which aren't read here.
    /// @throws PackageNotOpen
    bool hasForeignSignatures() const;

    /// @}

    /// @name Removing
    ///
    /// The last signature takes the origin part with it, unless signatures in another form hang on it. Handles on
    /// a removed signature stay readable.
    ///
    /// @throws PackageNotOpen, PackageReadOnly, PackageCreateOnly
    /// @throws CouldNotRemoveSignature  nothing that had been done by then is undone
    /// @{

    /// @throws SignatureNotFound
    void removeSignature(const std::u16string& name);
    void removeSignature(const DigitalSignature& signature);

    void removeAllSignatures();

    /// Does nothing if there is none.
    void removeCountersignature();

    /// Removes whatever hangs on the relationships of the two types by which signatures are found, also such
    /// as can't be read: all these relationships, from whatever source, and the parts that they lead to. A
    /// part to which a relationship of another type leads stays: it may be the document itself. That doesn't
    /// keep a part that has the content type of the origin or of signatures, unless the relationship belongs
    /// to signatures of the other form.
    void discardSignatures();

    /// @}

private:
    friend class SignatureCoverage;

    using Signatures = std::vector<DigitalSignature>;

    /// The first half of a verification: whether the signature value holds.
    using ValueCheck = std::function<DigitalSignatureVerificationStatus(const DigitalSignatureData&)>;

    void doLoad() override;
    void doSave() override;
    std::vector<std::u16string> doGetManagedPartNames() const override;
    std::vector<std::u16string> doGetManagedRelationshipTypes() const override;

    void throwIfPackageNotOpen() const;
    void throwIfPackageReadOnly() const;
    void throwIfPackageCreateOnly() const;
    void throwIfPackageNotOpenForModify() const;
    void throwIfPackageNotCountersigned() const;
    void throwIfNotValidSignaturePart(const PartName& partName) const;

    void ensureLoaded() const;
    Part getTarget(const Relationship& relationship);
    std::shared_ptr<DigitalSignatureData> readSignature(const Part& part,
                                                        SelectableRelationships& selectable) const;
    void addLoadedSignature(const std::shared_ptr<DigitalSignatureData>& data, const Part& part);
    void updateNextSignatureID(std::u16string id, const Part& part);
    void fillUpSignedEntities(DigitalSignatureData& data, SelectableRelationships& selectable) const;
    void fillUpSignedRelationships(const Reference& reference, const PartName& relationshipsPart,
                                   SelectableRelationships& selectable, SignedRelationships& selected) const;
    void assertSignatureCorrectnessAfterLoad(const DigitalSignatureData& data) const;
    Signatures::iterator findSignature(const std::u16string& name);

    std::u16string getNextSignatureID();
    Part getSignatureOriginPart(URI& uri, std::u16string& relationshipID) const;
    std::optional<URI> findOriginOfSignatures() const;
    std::optional<Part> findOriginPart() const;

    std::vector<Bytes> computePartDigests(const std::vector<PartName>& partNames,
                                          DigestMethod digestMethod) const;
    DataToSign computeDataToSign(const std::vector<PartName>& partNames,
                                 const std::vector<RelationshipSelector>& selectors,
                                 const SignatureParams& params) const;
    std::shared_ptr<const SignedRelationships>
    selectRelationships(const std::vector<RelationshipSelector>& selectors) const;
    std::uint64_t measureWork() const;
    void throwIfTooMuchWork(const DataToSign& data, const SignatureParams& params) const;

    static void throwIfNoVerificationKey(const Bytes& publicKey);
    DigitalSignature signHelper(const Bytes& privateKey, const Bytes& publicKey,
                                const SignatureParams& params, const std::vector<PartName>& parts,
                                const std::vector<RelationshipSelector>& selectors, bool countersign);
    DigitalSignature signHelper(const Bytes& privateKey, const X509Certificate& certificate,
                                const X509CertificateChain& chain, const TrustStore& trustStore,
                                const CertificateValidationOptions& options, const SignatureParams& params,
                                const std::vector<PartName>& parts,
                                const std::vector<RelationshipSelector>& selectors, bool countersign);
    DigitalSignature signHelper(const PKCS12Certificate& bundle, const TrustStore& trustStore,
                                const CertificateValidationOptions& options, const SignatureParams& params,
                                const std::vector<PartName>& parts,
                                const std::vector<RelationshipSelector>& selectors, bool countersign);
    std::u16string takeSignatureID(bool countersign);
    DigitalSignature addSignature(std::shared_ptr<DigitalSignatureData> data);
    Bytes composeSignaturePart(DigitalSignatureData& data) const;
    void saveSignaturePart(const DigitalSignature& signature, const Bytes& document);
    Part createOrFetchOriginPart();

    std::pair<std::vector<PartName>, std::vector<RelationshipSelector>> getAllPartsAndRels() const;
    std::pair<std::vector<PartName>, std::vector<RelationshipSelector>> countersignHelper() const;

    DigitalSignatureVerificationStatus verify(const DigitalSignature& signature,
                                              const ValueCheck& checkValue);
    DigitalSignatureVerificationStatus verify(const DigitalSignatureData& data, const ValueCheck& checkValue,
                                              PartDigesters& digesters) const;
    DigitalSignatureVerificationStatus verifySignatureHelper(const DigitalSignatureData& data,
                                                             const DigitalSignatureVerificationStatus& status,
                                                             PartDigesters& digesters) const;
    DigitalSignatureVerificationStatus verifyReferencesAfterLoad(const DigitalSignatureData& data,
                                                                 PartDigesters& digesters) const;
    std::vector<const Reference*> findDifferences(const DigitalSignatureData& data,
                                                  PartDigesters& digesters) const;
    void judgeAll(const Signatures& signatures, const SignaturePolicy& policy,
                  SignatureVerdict& verdict) const;
    JudgedSignature judgeOne(const DigitalSignature& signature, const SignaturePolicy& policy,
                             PartDigesters& digesters, SelectableRelationships& selectable) const;
    void check(const SignaturePolicy& policy, PartDigesters& digesters, SelectableRelationships& selectable,
               JudgedSignature& judged) const;
    static InvalidSignature stripInvalidSignatureExceptionMessage(const InvalidSignature& e);

    void deleteSignaturePart(const PartName& partName);
    void discardAll();

    Signatures m_signatures;
    std::uint64_t m_nextSignatureID = 1;
    std::string m_placeOfFailure; ///< of the last loading: a relationship or a part; empty if there is none
    std::uint64_t m_work = 0;     ///< what it takes to digest the relationships of all loaded signatures
    std::unique_ptr<DigitalSignatureSerializer> m_serializer;
};

} // namespace opc::model
