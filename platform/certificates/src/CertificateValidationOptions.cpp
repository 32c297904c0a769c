#include <bedrock/certificates/CertificateValidationOptions.hpp>

#include "CertificateAccess.hpp"

#include <bedrock/certificates/Exceptions.hpp>

#include <openssl/pem.h>

namespace bedrock::certificates {

void CertificateValidationOptions::addRevocationList(const std::vector<unsigned char>& bytes) {
    const openssl::ErrorScope scope;
    auto list = openssl::fromDer<openssl::CrlPtr, d2i_X509_CRL>(bytes.data(), bytes.size());
    if (!list)
        list.reset(
            PEM_read_bio_X509_CRL(openssl::readingBio(bytes).get(), nullptr, detail::noPassword, nullptr));
    if (!list)
        openssl::fail<CertificateException>("The bytes are no revocation list.");
    lists.push_back(std::make_shared<detail::RevocationList>(detail::RevocationList{std::move(list)}));
    usingRevocationLists = true;
}

} // namespace bedrock::certificates
