#pragma once

#include <bedrock/certificates/CertificateValidationOptions.hpp>

#include <openssl/x509_vfy.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <limits>

namespace bedrock::certificates::detail {

/// The seconds since 1970 as the C library counts them. Where it has 32 bits for them, a time out of its reach becomes the
/// last or the first that it has.
template <typename SystemTime = std::time_t>
SystemTime toSystemTime(std::chrono::system_clock::time_point time) {
    const std::int64_t seconds = std::chrono::floor<std::chrono::seconds>(time.time_since_epoch()).count();
    using Limits = std::numeric_limits<SystemTime>;
    return static_cast<SystemTime>(
        std::clamp<std::int64_t>(seconds, std::int64_t{Limits::min()}, std::int64_t{Limits::max()}));
}

/// Has certificates checked as of the time in the options, if there is one, and not as of now.
inline void setCheckTime(X509_VERIFY_PARAM& parameters, const CertificateValidationOptions& options) {
    if (const auto time = options.getCheckTime())
        X509_VERIFY_PARAM_set_time(&parameters, toSystemTime(*time));
}

} // namespace bedrock::certificates::detail
