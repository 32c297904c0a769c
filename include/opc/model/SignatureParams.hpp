#pragma once

#include <opc/model/Export.hpp>

#include <chrono>
#include <cstdint>
#include <optional>

namespace opc::model {

/// The digest algorithm of a signature, and of the parts and relationships that it covers.
enum class DigestMethod : std::uint32_t {
    MD5 = 0,
    SHA1 = 1,
    SHA224 = 2,
    SHA256 = 3,
    SHA384 = 4,
    SHA512 = 5,
};

/// The key of a signature: RSA with a modulus of this many bits.
enum class SignatureMethod : std::uint32_t {
    RSA1024 = 0,
    RSA2048 = 1,
    RSA4096 = 2,
    NoKey = 3, ///< only for signatures that were read and contain no key
};

/// The algorithms of a signature, and the time that it is to name. A value type.
class OPC_MODEL_EXPORT SignatureParams {
public:
    explicit SignatureParams(DigestMethod digestMethod = DigestMethod::SHA512,
                             SignatureMethod signatureMethod = SignatureMethod::RSA2048)
        : digestMethod(digestMethod), signatureMethod(signatureMethod) {}

    DigestMethod getDigestMethod() const { return digestMethod; }
    SignatureMethod getSignatureMethod() const { return signatureMethod; }

    /// The time that a new signature names as that of signing, to the second. Without it, that is the time of the system's
    /// clock. With a certificate, signing fails if the certificate isn't valid at that time. The time of an existing
    /// signature is `DigitalSignature::getSignedTime`; here it is absent.
    /// @{
    std::optional<std::chrono::system_clock::time_point> getSigningTime() const { return signingTime; }
    void setSigningTime(std::chrono::system_clock::time_point time) { signingTime = time; }
    /// @}

private:
    DigestMethod digestMethod;
    SignatureMethod signatureMethod;
    std::optional<std::chrono::system_clock::time_point> signingTime;
};

/// Whether the algorithm has less than 112 bits of security (NIST SP 800-57 part 1), so that others may be able to forge
/// signatures: MD5, SHA-1, and keys below 2048 bits. Use these only for old documents.
/// @{
OPC_MODEL_EXPORT bool isWeak(DigestMethod digest);
OPC_MODEL_EXPORT bool isWeak(SignatureMethod method);
/// @}

/// @return the size of the key in bits
/// @throws opc::Exception  `method` is `NoKey`, or isn't a value of the enumeration
OPC_MODEL_EXPORT std::uint64_t signatureMethodToKeySize(SignatureMethod method);

/// @param keySize  in bits
/// @throws opc::Exception  `keySize` isn't 1024, 2048 or 4096
OPC_MODEL_EXPORT SignatureMethod keySizeToSignatureMethod(std::uint64_t keySize);

} // namespace opc::model
