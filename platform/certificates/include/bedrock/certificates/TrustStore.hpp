#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/crypto/Export.hpp>

#include <filesystem>
#include <optional>
#include <vector>

namespace bedrock::certificates {

/// The certificates that a validation trusts; a value. Each of them ends a chain, so a store that holds a
/// signer's own certificate trusts that signer.
class BEDROCK_CRYPTO_EXPORT TrustStore {
public:
    /// What certificates are trusted for, where they carry settings of their own about that.
    enum class Usage {
        Any = 0,     ///< whatever it is
        Signing = 1, ///< signing of documents and code
    };

    /// Whether it holds no certificate and wasn't given those of the system.
    bool empty() const noexcept { return certificates.empty() && !systemUsage; }

    /// @throws X509CertificateException  if the certificate is empty
    void addCertificate(const X509Certificate& certificate);

    /// Adds the certificates of a file: one in DER, or any number in PEM.
    /// @throws CertificateException  if the file can't be read or holds no certificate; nothing is added then
    void addFile(const std::filesystem::path& file);

    /// Adds the certificates of all files of a folder, but not of folders in it.
    /// @throws CertificateException  as `addFile`; nothing is added then
    void addFolder(const std::filesystem::path& folder);

    /// Takes in the certificates of the system, from the places that OpenSSL was built with or that the
    /// variables SSL_CERT_FILE and SSL_CERT_DIR name. They are read at each validation, as far as it needs
    /// them.
    /// @param usage    what they are trusted for
    /// @param replace  whether the certificates that the store holds are dropped
    void addSystemCertificates(Usage usage, bool replace);

    const std::vector<X509Certificate>& getCertificates() const noexcept { return certificates; }

    /// What the certificates of the system are trusted for; nothing if they weren't taken in.
    std::optional<Usage> getSystemUsage() const noexcept { return systemUsage; }

private:
    std::vector<X509Certificate> certificates;
    std::optional<Usage> systemUsage;
};

} // namespace bedrock::certificates
