#include <bedrock/certificates/TrustStore.hpp>

#include "CertificateAccess.hpp"

#include <bedrock/certificates/Exceptions.hpp>

#include <fstream>
#include <sstream>

namespace bedrock::certificates {

namespace {

std::vector<X509Certificate> readFile(const std::filesystem::path& file) {
    const std::string failure = "The certificates of " + file.string() + " can't be read.";
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf(); // sets the fail bit for a folder, an error and an empty file; throws nothing
    if (!stream || !content)
        throw CertificateException(failure);
    const std::string text = content.str();
    const std::vector<unsigned char> bytes(text.begin(), text.end());

    const openssl::ErrorScope scope;
    std::vector<X509Certificate> found;
    if (auto single = openssl::fromDer<openssl::X509Ptr, d2i_X509>(bytes.data(), bytes.size())) {
        found.push_back(detail::CertificateAccess::make(std::move(single)));
        return found;
    }
    const openssl::BioPtr source = openssl::readingBio(bytes);
    while (auto next = detail::readPemCertificate(*source, PEM_read_bio_X509_AUX))
        found.push_back(detail::CertificateAccess::make(std::move(next)));
    if (found.empty())
        openssl::fail<CertificateException>(failure);
    return found;
}

bool isFile(const std::filesystem::directory_entry& entry, std::error_code& error) {
    const bool answer = entry.is_regular_file(error);
    if (error == std::errc::no_such_file_or_directory)
        error.clear(); // a broken link
    return answer;
}

} // namespace

void TrustStore::addCertificate(const X509Certificate& certificate) {
    detail::CertificateAccess::get(certificate); // refuses an empty one
    certificates.push_back(certificate);
}

void TrustStore::addFile(const std::filesystem::path& file) {
    const std::vector<X509Certificate> found = readFile(file);
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
        const std::vector<X509Certificate> found = readFile(entry->path());
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
