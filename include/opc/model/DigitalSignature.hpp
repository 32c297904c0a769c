#pragma once

#include <opc/model/Enumerator.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>
#include <opc/model/SignatureParams.hpp>

#include <memory>
#include <string>
#include <vector>

namespace bedrock::certificates {
class X509Certificate;
class X509CertificateChain;
} // namespace bedrock::certificates

namespace boost::posix_time {
class ptime;
}

namespace opc::model {

class DigitalSignatureData;

/// A handle on one signature of a package. `DigitalSignatureManager` returns handles.
///
/// Copies share the signature, which doesn't change: different threads can use them, and they stay readable after the
/// signature was removed or the package closed. The signed parts and relationships are those of the time when the
/// signature was loaded or made.
class OPC_MODEL_EXPORT DigitalSignature {
public:
    DigitalSignature(const DigitalSignature& other) = default;
    DigitalSignature& operator=(const DigitalSignature& other) = default;
    virtual ~DigitalSignature();

    /// The name by which the manager finds the signature, such as "sig1" for the first one of a package.
    std::u16string getName() const;

    SignatureParams getSignatureParams() const;
    std::vector<unsigned char> getSignatureValue() const;

    Enumerator<std::vector<PartName>> getSignedPartNames() const;

    /// @return the signed relationships, each as often as it was selected (see `DigitalSignatureManager::sign`)
    /// @throws opc::Exception  there are more than 10,000,000
    Enumerator<std::vector<Relationship>> getSignedRelationships() const;

    /// The time of signing in UTC, as the signer claims it; not-a-date-time without a claim.
    boost::posix_time::ptime getSignedTime() const;

    /// The signer's certificate in the signature; empty if it contains none.
    bedrock::certificates::X509Certificate getCertificate() const;

    /// The further certificates in the signature; empty if it contains none.
    bedrock::certificates::X509CertificateChain getCertificateChain() const;

private:
    friend class DigitalSignatureData;

    explicit DigitalSignature(std::shared_ptr<DigitalSignatureData> data);

    std::shared_ptr<DigitalSignatureData> m_impl;
};

} // namespace opc::model
