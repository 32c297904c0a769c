#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/crypto/Export.hpp>

#include <filesystem>
#include <optional>
#include <vector>

namespace bedrock::certificates {

/// The certificates that a validation trusts. A value type. A chain can end in any of them, so a store with a signer's own
/// certificate trusts that signer.
class BEDROCK_CRYPTO_EXPORT TrustStore {
public:
    /// What certificates are trusted for, if they have their own settings for that.
    enum class Usage {
        Any = 0,     ///< every use
        Signing = 1, ///< signing of documents and code
    };

    /// Whether the store has no certificates, not even those of the system.
    bool empty() const noexcept { return certificates.empty() && !systemUsage; }

    /// @throws X509CertificateException  the certificate is empty
    void addCertificate(const X509Certificate& certificate);

    /// Adds the certificates of a file: one in DER, or any number in PEM.
    /// @throws CertificateException  the file can't be read or contains no certificate; nothing is added
    void addFile(const std::filesystem::path& file);

    /// Adds the certificates of all files in a folder, without its subfolders.
    /// @throws CertificateException  as `addFile`; nothing is added
    void addFolder(const std::filesystem::path& folder);

    /// Adds the certificates of the system: from the default places of OpenSSL, or from those that the environment
    /// variables SSL_CERT_FILE and SSL_CERT_DIR name. A validation reads those that it needs, and the file only if it has
    /// changed.
    /// @param usage    what they are trusted for
    /// @param replace  true to drop the other certificates of the store
    void addSystemCertificates(Usage usage, bool replace);

    const std::vector<X509Certificate>& getCertificates() const noexcept { return certificates; }

    /// What the certificates of the system are trusted for; empty if they weren't added.
    std::optional<Usage> getSystemUsage() const noexcept { return systemUsage; }

private:
    std::vector<X509Certificate> certificates;
    std::optional<Usage> systemUsage;
};

} // namespace bedrock::certificates
