#pragma once

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace opctool {

/// What the command line says about trusted certificates and their validation.
struct Trust {
    std::vector<std::string> files;
    std::vector<std::string> revocationLists;
    bool acceptWeak = false;
    std::string time; ///< when certificates must be valid; may be empty
};

/// @return the options about certificates alone
std::vector<CLI::Option*> addTrustOptions(CLI::App& command, Trust& trust);

/// Whether a text is a time that `makeValidationOptions` reads.
/// @return empty, or what is wrong
std::string checkTime(const std::string& text);

/// Empty if nothing was given. In the library's own profile that means the system's certificates.
bedrock::certificates::TrustStore makeTrustStore(const Trust& trust);

bedrock::certificates::CertificateValidationOptions makeValidationOptions(const Trust& trust);

/// All certificates of a file: one in DER, or any number in PEM.
/// @throws bedrock::certificates::CertificateException  there is none
std::vector<bedrock::certificates::X509Certificate> readCertificates(const std::string& path);

} // namespace opctool
