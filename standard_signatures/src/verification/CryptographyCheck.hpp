#pragma once

#include "content/PackageContents.hpp"
#include "coverage/SignedContents.hpp"
#include "document/SignatureDocument.hpp"

#include <opc/standard_signatures/Verification.hpp>

#include <bedrock/certificates/X509Certificate.hpp>

#include <cstdint>
#include <vector>

namespace opc::standard_signatures {

/// What the work on all signatures of a package may still cost.
struct WorkLeft {
    std::uint64_t documentBytes = 96U << 20; ///< of signature parts
    std::uint64_t canonicalBytes = 1U << 30; ///< of what is digested in a canonical form
    std::size_t relationships = 1000000;     ///< that are selected, as often as they are
    std::size_t keys = 200;                  ///< that are tried on signature values
    std::size_t timeStamps = 100;            ///< that are checked
};

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
