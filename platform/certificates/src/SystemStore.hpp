#pragma once

#include "OpenSsl.hpp"

namespace bedrock::certificates::detail {

/// The certificates of the system, as OpenSSL finds them. Its file of certificates is read again only if it has changed or the
/// environment names another one: OpenSSL takes 20 ms for a usual one. All threads share the store, so nobody may change it.
/// @throws CertificateException  they can't be used
openssl::StorePtr systemStore();

} // namespace bedrock::certificates::detail
