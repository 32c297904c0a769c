#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <opc/model/Enumerator.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>
#include <opc/model/SignatureParams.hpp>

#include <boost/date_time/posix_time/ptime.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opc::model {

class DigitalSignatureData;

/// A handle on one signature of a package, as `DigitalSignatureManager` gives it.
///
/// Copies share the signature, which doesn't change: they may live on different threads, and stay readable
/// when the signature has been removed or the package closed. What was signed is as it was when the signature
/// was loaded or made.
class OPC_MODEL_EXPORT DigitalSignature {
public:
    DigitalSignature(const DigitalSignature& other) = default;
    DigitalSignature& operator=(const DigitalSignature& other) = default;
    virtual ~DigitalSignature();

    /// By which the manager finds it again: "sig1" for the first signature of a package.
    std::u16string getName() const;

    SignatureParams getSignatureParams() const;
    std::vector<unsigned char> getSignatureValue() const;

    Enumerator<std::vector<PartName>> getSignedPartNames() const;

    /// Each as often as it was selected (`DigitalSignatureManager::sign`).
    /// @throws opc::Exception  if there are more than 10,000,000, which the list would hold one by one
    Enumerator<std::vector<Relationship>> getSignedRelationships() const;

    /// When it was made, in UTC, as the signer says; not-a-date-time if it doesn't say.
    boost::posix_time::ptime getSignedTime() const;

    /// The signer's certificate as the signature carries it; empty if it carries none.
    bedrock::certificates::X509Certificate getCertificate() const;

    /// The further certificates that the signature carries; empty if it carries none.
    bedrock::certificates::X509CertificateChain getCertificateChain() const;

private:
    friend class DigitalSignatureManager;
    friend class CoverageIndex;

    explicit DigitalSignature(std::shared_ptr<DigitalSignatureData> data);
    std::shared_ptr<DigitalSignatureData> getImpl() const { return m_impl; }

    std::shared_ptr<DigitalSignatureData> m_impl;
};

} // namespace opc::model
