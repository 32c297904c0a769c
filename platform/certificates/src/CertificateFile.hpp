#pragma once

#include <bedrock/certificates/X509Certificate.hpp>

#include <filesystem>
#include <vector>

namespace bedrock::certificates::detail {

/// The certificates of a file: one in DER, or any number in PEM.
/// @throws CertificateException  the file can't be read or contains no certificate
std::vector<X509Certificate> readCertificates(const std::filesystem::path& file);

} // namespace bedrock::certificates::detail
