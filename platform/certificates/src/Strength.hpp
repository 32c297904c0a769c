#pragma once

#include "OpenSsl.hpp"

#include <bedrock/certificates/CertificateValidationResults.hpp>

#include <vector>

namespace bedrock::certificates::detail {

/// A weakness, and the depth of the certificate that has it.
struct WeakCertificate {
    WeakAlgorithm algorithm;
    int depth;
};

/// The weaknesses of a verified chain. Its last certificate is in the store, so its own signature doesn't count.
std::vector<WeakCertificate> findWeakCertificates(STACK_OF(X509) * chain);

/// Whether the signature of a list uses a weak digest, or one that OpenSSL doesn't know.
bool isWeak(const X509_CRL& list);

WeakAlgorithm weaknessOf(const X509_CRL& list);

} // namespace bedrock::certificates::detail
