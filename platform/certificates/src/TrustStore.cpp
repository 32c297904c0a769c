#include <bedrock/certificates/TrustStore.hpp>

#include "CertificateFile.hpp"

#include <bedrock/certificates/Exceptions.hpp>

namespace bedrock::certificates {

namespace {

bool isFile(const std::filesystem::directory_entry& entry, std::error_code& error) {
    const bool answer = entry.is_regular_file(error);
    if (error == std::errc::no_such_file_or_directory)
        error.clear(); // a broken link
    return answer;
}

} // namespace

void TrustStore::addCertificate(const X509Certificate& certificate) {
    if (certificate.empty())
        throw X509CertificateException("The certificate is empty.");
    certificates.push_back(certificate);
}

void TrustStore::addFile(const std::filesystem::path& file) {
    const std::vector<X509Certificate> found = detail::readCertificates(file);
    certificates.insert(certificates.end(), found.begin(), found.end());
}

void TrustStore::addFolder(const std::filesystem::path& folder) {
    std::error_code error;
    std::vector<X509Certificate> all;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const bool isRead = isFile(*entry, error);
        if (error)
            break;
        if (!isRead)
            continue;
        const std::vector<X509Certificate> found = detail::readCertificates(entry->path());
        all.insert(all.end(), found.begin(), found.end());
    }
    if (error)
        throw CertificateException("The folder " + folder.string() + " can't be read (" + error.message() +
                                   ").");
    if (all.empty())
        throw CertificateException("The folder " + folder.string() + " holds no certificate.");
    certificates.insert(certificates.end(), all.begin(), all.end());
}

void TrustStore::addSystemCertificates(Usage usage, bool replace) {
    if (replace)
        certificates.clear();
    systemUsage = usage;
}

} // namespace bedrock::certificates
