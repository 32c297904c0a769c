#pragma once

#include <bedrock/certificates/X509Certificate.hpp>

#include <utility>
#include <vector>

namespace bedrock::certificates {

/// Certificates in order. Being in a chain doesn't make a certificate trusted.
class X509CertificateChain {
public:
    void addCertificate(X509Certificate certificate) { certificates.push_back(std::move(certificate)); }
    const std::vector<X509Certificate>& getCertificates() const noexcept { return certificates; }

private:
    std::vector<X509Certificate> certificates;
};

} // namespace bedrock::certificates
