#pragma once

#include <opc/standard_signatures/Coverage.hpp>
#include <opc/standard_signatures/Export.hpp>
#include <opc/standard_signatures/Reason.hpp>
#include <opc/standard_signatures/Trust.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace opc::interfaces {
class IPhysicalPackage;
}

namespace opc::standard_signatures {

/// What is required of signatures, and who is trusted. A value type.
struct VerificationPolicy {
    /// Whether SHA-1 and RSA keys of 1024 to 2047 bits count as good enough, in signatures and certificates.
    bool acceptWeak = false;

    /// Whether an RSA signature value is accepted whose DigestInfo lacks the NULL that RFC 8017 requires. Some signing
    /// programs made such values.
    bool acceptMissingNull = false;

    /// Whom to trust, and how certificates are checked. Without it the trust isn't checked, and no answer is yes.
    std::optional<TrustPolicy> trust;
};

/// A reference of a signature: what it says is signed, and whether that is still so.
struct CheckedReference {
    std::string uri;             ///< as it stands in the signature: "#" and an Id, or the name of a part
    std::string digest;          ///< the name of the digest, such as SHA-256
    std::optional<Reason> wrong; ///< nothing if what it signs is unchanged
};

/// The first answer: whether what is signed is unchanged, and whether the key made the signature.
struct CryptographyAnswer {
    enum class Status {
        Valid,
        Weak,   ///< valid, but over SHA-1, or with an RSA key below 2048 bits
        Broken, ///< something has changed, or the signature can't be accepted whoever made it
    };

    Status status = Status::Broken;
    std::string method;             ///< such as "RSA with SHA-256"; empty if the signature can't be read
    std::size_t keyBits = 0;        ///< 0 without a key
    std::size_t referenceCount = 0; ///< of all

    /// First those to elements, then those to parts. The signatures of a package list at most `MOST_LISTED` together, and half
    /// of that is for those that are wrong.
    std::vector<CheckedReference> references;
    static constexpr std::size_t MOST_LISTED = 10000;

    std::vector<Reason> reasons; ///< why it isn't `Valid`, without those of the references
};

/// A signature of a package, and the three answers about it.
struct VerifiedSignature {
    std::string part; ///< the name of its part
    std::string name; ///< the last segment of that without its extension, such as sig1

    CryptographyAnswer cryptography;
    CoverageAnswer coverage;
    TrustAnswer trust;

    /// The time of signing, as the signer claims it in the form of W3CDTF; empty without a claim that is signed.
    std::string claimedTime;

    /// The only yes: cryptography is valid or acceptably weak, the coverage is complete, and the signer is trusted.
    bool isYes = false;
};

/// The signatures of a package.
struct PackageVerification {
    std::vector<VerifiedSignature> signatures;

    /// Why the answer isn't yes, beside the reasons of the signatures: for example a part that looks like a signature and
    /// that no relationship reaches.
    std::vector<Reason> problems;

    /// Whether the package has signatures, each of them is a yes, and there are no problems.
    bool isYes() const;
};

/// Verifies all signatures of a package in the standard's profile (ECMA-376 Part 2, digital signatures; W3C XML Signature;
/// XAdES). It reads what the store holds, and changes nothing. Nothing outside the package is opened.
///
/// A signature that can't be read is broken, and its reasons say why: nothing in a package makes this function throw, but
/// what the store throws when it lists its parts.
///
/// @param store  open, and not used by anybody else during the call: a model that is open over it too has read all that it
///               needs, but what it hasn't saved yet doesn't count
/// @throws opc::Exception  the store fails
/// @throws bedrock::certificates::CertificateException  a trusted certificate or a revocation list can't be used
OPC_STANDARD_SIGNATURES_EXPORT PackageVerification verify(interfaces::IPhysicalPackage& store,
                                                          const VerificationPolicy& policy = {});

/// Whether the package has signatures in the standard's profile: a relationship leads to one, a part has their content type,
/// or there is an origin of signatures.
/// @param store  as for `verify`
OPC_STANDARD_SIGNATURES_EXPORT bool hasSignatures(interfaces::IPhysicalPackage& store);

/// The names of the parts of signatures to which relationships lead, in the order in which `verify` has them. Nothing is
/// verified.
/// @param store  as for `verify`
OPC_STANDARD_SIGNATURES_EXPORT std::vector<std::string> listSignatures(interfaces::IPhysicalPackage& store);

} // namespace opc::standard_signatures
