#include <bedrock/certificates/Exceptions.hpp>

namespace bedrock::certificates {

// Here, so that there is one type information of each class in the program.
CertificateException::~CertificateException() = default;
X509CertificateException::~X509CertificateException() = default;

} // namespace bedrock::certificates
