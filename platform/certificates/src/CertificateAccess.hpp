#pragma once

#include "OpenSsl.hpp"

#include <bedrock/certificates/X509Certificate.hpp>

#include <openssl/pem.h>

namespace bedrock::certificates {

struct X509Certificate::Content {
    openssl::X509Ptr certificate;
};

namespace detail {

/// The way between certificates here and OpenSSL's.
class CertificateAccess {
public:
    static X509Certificate make(openssl::X509Ptr certificate);

    /// OpenSSL counts references and caches inside its certificates, under its own locks: none is constant to
    /// it.
    /// @throws X509CertificateException  if the certificate is empty
    static X509& get(const X509Certificate& certificate);
};

/// Stands where OpenSSL would ask for a password at the terminal.
inline int noPassword(char*, int, int, void*) {
    return -1;
}

/// The next certificate of a PEM text; null at the end of it.
/// @param read  `PEM_read_bio_X509`, or `PEM_read_bio_X509_AUX` for certificates that may carry settings of
///              what they are trusted for, too
/// @throws X509CertificateException  if there is one that can't be read
openssl::X509Ptr readPemCertificate(BIO& source, decltype(PEM_read_bio_X509)& read);

struct RevocationList {
    openssl::CrlPtr list;
};

/// A name as one line of UTF-8, in the manner of RFC 2253.
std::string toText(const X509_NAME& name);

} // namespace detail

} // namespace bedrock::certificates
