#pragma once

#include "OpenSsl.hpp"

#include <bedrock/certificates/X509Certificate.hpp>

#include <openssl/pem.h>

#include <mutex>

namespace bedrock::certificates {

struct X509Certificate::Content {
    openssl::X509Ptr fields; ///< without its key; null if `whole` was there first
    mutable std::once_flag completing;
    mutable openssl::X509Ptr whole;
};

namespace detail {

/// Converts between certificates here and those of OpenSSL.
class CertificateAccess {
public:
    static X509Certificate make(openssl::X509Ptr certificate);

    /// OpenSSL counts references and caches inside its certificates, under its own locks, so it takes none as
    /// constant.
    /// @throws X509CertificateException  the certificate is empty
    static X509& get(const X509Certificate& certificate);

    /// The same, but OpenSSL may not have decoded its key yet, which costs ten times as much as all else.
    static X509& getFields(const X509Certificate& certificate);
};

/// Gives no password: otherwise OpenSSL would ask for one at the terminal.
inline int noPassword(char*, int, int, void*) {
    return -1;
}

/// The next certificate of a PEM text; null at the end.
/// @param read  `PEM_read_bio_X509`, or `PEM_read_bio_X509_AUX` for certificates that may have their own trust
///              settings
/// @throws X509CertificateException  the next certificate can't be read
openssl::X509Ptr readPemCertificate(BIO& source, decltype(PEM_read_bio_X509)& read);

struct RevocationList {
    openssl::CrlPtr list;
};

/// A name as one line of UTF-8, in the form of RFC 2253.
std::string toText(const X509_NAME& name);

} // namespace detail

} // namespace bedrock::certificates
