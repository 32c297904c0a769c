#pragma once

#include "document/SignatureDocument.hpp"
#include "document/WorkLeft.hpp"

#include <opc/standard_signatures/Verification.hpp>

#include <vector>

namespace opc::standard_signatures {

/// Says who made a signature that holds.
/// @param key          that made it
/// @param certificate  of the key; empty if there is none
/// @param others       certificates that a chain can lead through
/// @param work         what the check of time stamps may still cost
TrustAnswer checkTrust(const SignatureDocument& document, const std::vector<unsigned char>& key,
                       const bedrock::certificates::X509Certificate& certificate,
                       const std::vector<bedrock::certificates::X509Certificate>& others,
                       const VerificationPolicy& policy, WorkLeft& work);

} // namespace opc::standard_signatures
