#pragma once

#include "OpenSsl.hpp"

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/CertificateValidationResults.hpp>

#include <vector>

namespace bedrock::certificates::detail {

/// Which revocation lists may cover certificates.
enum class CoveringLists {
    Strong, ///< those signed over a strong digest
    All,    ///< the others as well
};

/// Gives the store the lists that can cover certificates, which delta lists never do.
/// @throws CertificateException  if it can't take one
void addRevocationLists(X509_STORE& store, const CertificateValidationOptions& options, CoveringLists lists);

/// OpenSSL's callback, for what it finds about lists: see `setUsingRevocationLists`.
int judgeRevocation(int ok, X509_STORE_CTX* context);

/// The first certificate of a verified chain that any list of its issuer names, also one that covers nothing;
/// null if there is none.
X509* findRevoked(STACK_OF(X509) * chain, const CertificateValidationOptions& options);

/// The weakly signed lists of the chain's issuers.
std::vector<WeakAlgorithm> findWeakLists(STACK_OF(X509) * chain, const CertificateValidationOptions& options);

} // namespace bedrock::certificates::detail
