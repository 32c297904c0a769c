#include "ModuleLoading.hpp"
#include "OpenSslModule.hpp"

#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <bedrock/crypto/utils/CryptoNotLoaded.hpp>

namespace bedrock {

namespace {

/// @throws CryptoNotLoaded  the module isn't there. A later call looks for it again
const OpenSslModule& module() {
    static const auto& loaded = loadModule<OpenSslModule, crypto::utils::CryptoNotLoaded>(
        OPCMODEL_OPENSSL_MODULE, "opcmodelOpenSsl", "OpenSSL can't be loaded: ");
    return loaded;
}

} // namespace

namespace crypto {

RsaKeyPair generateRsaKeyPair(std::size_t bits) {
    return module().generateRsaKeyPair(bits);
}

PublicKeyKind describePublicKey(const std::vector<unsigned char>& publicKey) {
    return module().describePublicKey(publicKey);
}

std::vector<unsigned char> makeRSAPublicKey(const std::vector<unsigned char>& modulus,
                                            const std::vector<unsigned char>& exponent) {
    return module().makeRSAPublicKey(modulus, exponent);
}

std::vector<unsigned char> makeECPublicKey(const std::string& curve,
                                           const std::vector<unsigned char>& point) {
    return module().makeECPublicKey(curve, point);
}

CheckedSignatureValue checkSignatureValue(const std::vector<unsigned char>& publicKey, SignatureScheme scheme,
                                          DigestAlgorithm algorithm, const std::string& content,
                                          const std::vector<unsigned char>& value) {
    return module().checkSignatureValue(publicKey, scheme, algorithm, content, value);
}

std::vector<unsigned char> makeSignatureValue(const std::vector<unsigned char>& privateKey,
                                              SignatureScheme scheme, DigestAlgorithm algorithm,
                                              const std::string& content) {
    return module().makeSignatureValue(privateKey, scheme, algorithm, content);
}

SigningKey readSigningKey(const std::vector<unsigned char>& encoded) {
    return module().readSigningKey(encoded);
}

PublicKeyNumbers getPublicKeyNumbers(const std::vector<unsigned char>& publicKey) {
    return module().publicKeyNumbers(publicKey);
}

SigningKey generateECKey(const std::string& curve) {
    return module().generateECKey(curve);
}

std::vector<unsigned char> readPublicKey(const std::vector<unsigned char>& encoded) {
    return module().readPublicKey(encoded);
}

namespace cryptopp {

std::shared_ptr<DigestEngine> CryptoProvider::createDigestEngine(DigestAlgorithm algorithm) {
    return module().provider().createDigestEngine(algorithm);
}

std::shared_ptr<RSAPrivateKey> CryptoProvider::createRSAPrivateKey(std::size_t bits, const Bytes& encoded) {
    return module().provider().createRSAPrivateKey(bits, encoded);
}

std::shared_ptr<RSAPrivateKey> CryptoProvider::createRSAPrivateKey(std::size_t bits, const Bytes& modulus,
                                                                   const Bytes& privateExponent,
                                                                   const Bytes& publicExponent) {
    return module().provider().createRSAPrivateKey(bits, modulus, privateExponent, publicExponent);
}

std::shared_ptr<RSAPublicKey> CryptoProvider::createRSAPublicKey(std::size_t bits, const Bytes& encoded) {
    return module().provider().createRSAPublicKey(bits, encoded);
}

std::shared_ptr<RSAPublicKey> CryptoProvider::createRSAPublicKey(std::size_t bits, const Bytes& modulus,
                                                                 const Bytes& exponent) {
    return module().provider().createRSAPublicKey(bits, modulus, exponent);
}

std::shared_ptr<RSASigner> CryptoProvider::createRSASigner(std::size_t bits,
                                                           const std::shared_ptr<RSAPrivateKey>& key,
                                                           RSAPaddingMode padding,
                                                           const std::shared_ptr<CryptoPRNG>& generator) {
    return module().provider().createRSASigner(bits, key, padding, generator);
}

std::shared_ptr<RSAVerifier> CryptoProvider::createRSAVerifier(std::size_t bits,
                                                               const std::shared_ptr<RSAPublicKey>& key,
                                                               RSAPaddingMode padding,
                                                               const std::shared_ptr<CryptoPRNG>& generator) {
    return module().provider().createRSAVerifier(bits, key, padding, generator);
}

std::shared_ptr<CryptoPRNG> CryptoProvider::getDefaultCryptoPRNG() const {
    return module().provider().getDefaultCryptoPRNG();
}

} // namespace cryptopp

} // namespace crypto

namespace certificates {

using Bytes = std::vector<unsigned char>;

X509Certificate::X509Certificate(const Bytes& bytes) : X509Certificate(module().certificate(bytes)) {
}

std::size_t X509Certificate::getKeySize() const {
    return (this->*module().keySize)();
}

Bytes X509Certificate::getModulus() const {
    return (this->*module().modulus)();
}

Bytes X509Certificate::getPublicExponent() const {
    return (this->*module().publicExponent)();
}

Bytes X509Certificate::getPublicKey() const {
    return (this->*module().publicKey)();
}

bool X509Certificate::isValidForDigitalSigning() const {
    return (this->*module().isValidForDigitalSigning)();
}

std::string X509Certificate::getAsString() const {
    return (this->*module().asString)();
}

Bytes X509Certificate::getAsByteArray() const {
    return (this->*module().asByteArray)();
}

std::string X509Certificate::getSHA256Fingerprint() const {
    return (this->*module().fingerprint)();
}

std::string X509Certificate::getSubject() const {
    return (this->*module().subject)();
}

X509Certificate::Validity X509Certificate::getValidity() const {
    return (this->*module().validity)();
}

std::string X509Certificate::getIssuer() const {
    return (this->*module().issuer)();
}

std::string X509Certificate::getSerialNumber() const {
    return (this->*module().serialNumber)();
}

CertificateValidationResults X509Certificate::validateCertificate(const X509CertificateChain& chain,
                                                                  const CertificateValidationOptions& options,
                                                                  const TrustStore& trustStore) const {
    return (this->*module().validate)(chain, options, trustStore);
}

PKCS12Certificate::PKCS12Certificate(const Bytes& bytes, const std::string& password)
    : PKCS12Certificate(module().bundle(bytes, password)) {
}

Bytes PKCS12Certificate::getPrivateExponent() const {
    return (this->*module().privateExponent)();
}

KeyBundle readKeyBundle(const Bytes& bytes, const std::string& password) {
    return module().readKeyBundle(bytes, password);
}

void CertificateValidationOptions::addRevocationList(const Bytes& bytes) {
    (this->*module().addRevocationList)(bytes);
}

std::vector<X509Certificate> detail::readCertificates(const std::filesystem::path& file) {
    return module().fileOfCertificates(file);
}

TimeStampResults checkTimeStamp(const Bytes& token, const std::string& content,
                                const CertificateValidationOptions& options, const TrustStore& trustStore) {
    return module().timeStamp(token, content, options, trustStore);
}

X509Certificate makeSelfSignedCertificate(const crypto::SigningKey& key, const std::string& name,
                                          unsigned days) {
    return module().selfSigned(key, name, days);
}

} // namespace certificates

} // namespace bedrock
