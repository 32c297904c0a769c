#pragma once

#include <opc/model/Export.hpp>

#include <cstdint>

namespace opc::model {

/// The digest of a signature and of what it refers to.
enum class DigestMethod : std::uint32_t {
    MD5 = 0,
    SHA1 = 1,
    SHA224 = 2,
    SHA256 = 3,
    SHA384 = 4,
    SHA512 = 5,
};

/// The key that a signature is made with: RSA, with a modulus of that many bits.
enum class SignatureMethod : std::uint32_t {
    RSA1024 = 0,
    RSA2048 = 1,
    RSA4096 = 2,
    NoKey = 3, ///< a signature was read that holds no key; can't be signed with
};

/// How a signature is made: a plain value, copied freely.
class OPC_MODEL_EXPORT SignatureParams {
public:
    explicit SignatureParams(DigestMethod digest = DigestMethod::SHA512,
                             SignatureMethod signature = SignatureMethod::RSA2048)
        : digestMethod(digest), signatureMethod(signature) {}

    DigestMethod getDigestMethod() const { return digestMethod; }
    SignatureMethod getSignatureMethod() const { return signatureMethod; }

private:
    DigestMethod digestMethod;
    SignatureMethod signatureMethod;
};

/// Whether it has less than 112 bits of security (NIST SP 800-57 part 1), so that others may be able to forge
/// what is signed by it: MD5 and SHA-1, and keys below 2048 bits. For old documents alone.
/// @{
OPC_MODEL_EXPORT bool isWeak(DigestMethod digest);
OPC_MODEL_EXPORT bool isWeak(SignatureMethod method);
/// @}

/// @return the size of the key in bits
/// @throws opc::Exception  for `NoKey` and for any value that has no name
OPC_MODEL_EXPORT std::uint64_t signatureMethodToKeySize(SignatureMethod method);

/// @param keySize  in bits
/// @throws opc::Exception  unless it is 1024, 2048 or 4096
OPC_MODEL_EXPORT SignatureMethod keySizeToSignatureMethod(std::uint64_t keySize);

} // namespace opc::model
