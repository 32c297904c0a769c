#include "CertificateFile.hpp"

#include "CertificateAccess.hpp"

#include <bedrock/certificates/Exceptions.hpp>

#include <fstream>
#include <sstream>

namespace bedrock::certificates {

std::vector<X509Certificate> detail::readCertificates(const std::filesystem::path& file) {
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

} // namespace bedrock::certificates
