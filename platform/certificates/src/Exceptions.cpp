#include <bedrock/certificates/Exceptions.hpp>

namespace bedrock::certificates {

// Defined here, so that the program has one type information of each class.
CertificateException::~CertificateException() = default;
X509CertificateException::~X509CertificateException() = default;

} // namespace bedrock::certificates
