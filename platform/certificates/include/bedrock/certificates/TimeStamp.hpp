#pragma once

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/crypto/Export.hpp>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace bedrock::certificates {

/// What a time stamp token says, and whether it may be believed.
struct TimeStampResults {
    /// When the content existed, as the token says; nothing if it can't be read.
    std::optional<std::chrono::system_clock::time_point> time;

    bool isTrusted = false;
    bool isWeak = false; ///< its imprint is a digest with less than 112 bits of security
    std::string error;   ///< why it isn't trusted, in English; empty if it is
};

/// Checks a time stamp token (RFC 3161): it is about this content, a certificate that is there for time stamps signed it,
/// and that one leads to a certificate of the store at the time of the check. Weak imprints are accepted only if the
/// options accept weak digests.
/// @param token    the token in DER, a CMS structure
/// @param content  what it is about, not its digest
/// @throws CertificateException  the trust store can't be used
BEDROCK_CRYPTO_EXPORT TimeStampResults checkTimeStamp(const std::vector<unsigned char>& token,
                                                      const std::string& content,
                                                      const CertificateValidationOptions& options,
                                                      const TrustStore& trustStore);

} // namespace bedrock::certificates
