#pragma once

#include "OpenSsl.hpp"

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/CertificateValidationResults.hpp>

#include <vector>

namespace bedrock::certificates::detail {

/// Which revocation lists can cover certificates.
enum class CoveringLists {
    Strong, ///< those signed over a strong digest
    All,    ///< also the others
};

/// The lists that can cover certificates. Delta lists never do. They belong to the options.
openssl::CrlStackPtr coveringLists(const CertificateValidationOptions& options, CoveringLists lists);

/// The callback through which OpenSSL reports on lists: see `setUsingRevocationLists`.
/// @param context  with the options as its data
int judgeRevocation(int ok, X509_STORE_CTX* context);

/// The first certificate of a verified chain that any list of its issuer revokes, including lists that cover nothing;
/// null if there is none.
X509* findRevoked(STACK_OF(X509) * chain, const CertificateValidationOptions& options);

/// The lists of the chain's issuers with weak signatures.
std::vector<WeakAlgorithm> findWeakLists(STACK_OF(X509) * chain, const CertificateValidationOptions& options);

} // namespace bedrock::certificates::detail
