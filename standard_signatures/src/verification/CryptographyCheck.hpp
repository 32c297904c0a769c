#pragma once

#include "content/PackageContents.hpp"
#include "coverage/SignedContents.hpp"
#include "document/SignatureDocument.hpp"
#include "document/WorkLeft.hpp"

#include <opc/standard_signatures/Verification.hpp>

#include <bedrock/certificates/X509Certificate.hpp>

#include <vector>

namespace opc::standard_signatures {

/// What the check of a signature finds.
struct CheckedSignature {
    CryptographyAnswer answer;
    SignedContents contents;                            ///< empty if it is broken as a whole
    std::vector<unsigned char> key;                     ///< that made it
    bedrock::certificates::X509Certificate certificate; ///< of the key; empty if there is none
};

/// Checks the signature value, the digests of the signed elements, and then those of the parts.
/// @param certificates  of the signature and of its certificate parts
CheckedSignature checkCryptography(const SignatureDocument& document, PackageContents& package,
                                   const std::vector<bedrock::certificates::X509Certificate>& certificates,
                                   const VerificationPolicy& policy, WorkLeft& work);

} // namespace opc::standard_signatures
