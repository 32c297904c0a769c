#pragma once

#include "signatures/document/DigitalSignatureSerializer.hpp"
#include "signatures/manager/DataGathering.hpp"
#include "signatures/verification/SignatureVerifier.hpp"

#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Part.hpp>
#include <opc/model/Relationship.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace opc::model {

/// The signatures of a package, as loaded and with later changes.
struct SignatureList {
    std::vector<DigitalSignature> signatures;
    std::uint64_t nextNumber = 1; ///< the first possible identifier of a new signature
    std::uint64_t work = 0;       ///< of the loaded signatures, as `measureWork` gives it
};

/// @throws CouldNotGenerateSignature
void throwIfNoVerificationKey(const std::vector<unsigned char>& publicKey);

/// The state of the manager, and the operations behind its interface. Each file defines the operations of one
/// concern.
struct DigitalSignatureManager::Impl {
    explicit Impl(Package& package) : package(package) {}

    void throwIfNotOpen() const;
    void throwIfNotOpenForModify() const;

    /// @throws SignatureNotFound
    std::vector<DigitalSignature>::iterator find(const std::u16string& name);
    bool isCountersigned() const;

    /// @name Origin part
    /// @{

    struct Origin {
        Part part;
        Relationship relationship; ///< of the package, which leads to the part
    };

    /// @throws SignatureNotFound
    Origin getOrigin() const;

    /// The name of the origin part, if there are signatures.
    std::optional<URI> findOriginOfSignatures() const;

    /// The origin part that a new signature uses, if there is one.
    std::optional<Part> findOriginForNew() const;

    /// @throws SignatureNotFound  if no relationship of the origin part leads to the part
    void throwIfNotSignaturePart(const PartName& partName) const;

    /// @}

    /// Reads all signatures of the package.
    /// @throws InvalidSignature  with code 102; the list is empty then
    void load();

    /// @name Signing
    /// @throws as the operations of the manager
    /// @{
    DigitalSignature sign(const Selection& selection, const Bytes& privateKey, const Bytes& publicKey,
                          const SignatureParams& params);
    DigitalSignature sign(const Selection& selection, const Bytes& privateKey,
                          const X509Certificate& certificate, const X509CertificateChain& chain,
                          const CertificateValidationOptions& options, const SignatureParams& params,
                          const TrustStore& trustStore);
    DigitalSignature sign(const Selection& selection, const PKCS12Certificate& bundle,
                          const CertificateValidationOptions& options, const SignatureParams& params,
                          const TrustStore& trustStore);

    /// All signatures, for a countersignature.
    Selection selectSignatures() const;

    DataToSign gather(const Selection& selection, const SignatureParams& params) const;

    /// The identifier of a new signature. Takes a number each time.
    std::u16string takeID(const Selection& selection);

    /// Writes the signature part and adds the signature to the list.
    void add(const std::shared_ptr<DigitalSignatureData>& data);

    /// The content of the signature part. It is read again, so that no signature beyond a limit is written.
    Bytes compose(DigitalSignatureData& data);
    void savePart(const DigitalSignatureData& data, const Bytes& document);
    Part getOrCreateOrigin();
    /// @}

    SignatureVerifier makeVerifier() const { return {package, list.work}; }

    /// Judges the signatures and what they cover, and adds all findings to the verdict.
    void judge(const std::vector<DigitalSignature>& signatures, const SignaturePolicy& policy,
               SignatureVerdict& verdict) const;

    /// Deletes a signature part, and with the last one the origin part. The list doesn't change.
    void deletePart(const PartName& partName);

    Package& package;
    DigitalSignatureSerializer serializer;
    SignatureList list;
};

} // namespace opc::model
