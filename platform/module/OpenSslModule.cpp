#include "OpenSslModule.hpp"

#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>

namespace bedrock {

namespace {

crypto::interfaces::ICryptoProvider& provider() {
    static crypto::cryptopp::CryptoProvider only;
    return only;
}

OpenSslModule::X509 readCertificate(const OpenSslModule::Bytes& bytes) {
    return OpenSslModule::X509(bytes);
}

OpenSslModule::Pkcs12 readBundle(const OpenSslModule::Bytes& bytes, const std::string& password) {
    return OpenSslModule::Pkcs12(bytes, password);
}

} // namespace

} // namespace bedrock

/// What the module exports.
extern "C" __attribute__((visibility("default"))) const bedrock::OpenSslModule opcmodelOpenSsl;

const bedrock::OpenSslModule opcmodelOpenSsl = {
    &bedrock::provider,
    &bedrock::crypto::generateRsaKeyPair,
    &bedrock::crypto::describePublicKey,
    &bedrock::crypto::makeRSAPublicKey,
    &bedrock::crypto::makeECPublicKey,
    &bedrock::crypto::checkSignatureValue,
    &bedrock::crypto::makeSignatureValue,
    &bedrock::crypto::readSigningKey,
    &bedrock::crypto::getPublicKeyNumbers,
    &bedrock::crypto::generateECKey,
    &bedrock::crypto::readPublicKey,
    &bedrock::readCertificate,
    &bedrock::OpenSslModule::X509::getKeySize,
    &bedrock::OpenSslModule::X509::getModulus,
    &bedrock::OpenSslModule::X509::getPublicExponent,
    &bedrock::OpenSslModule::X509::getPublicKey,
    &bedrock::OpenSslModule::X509::isValidForDigitalSigning,
    &bedrock::OpenSslModule::X509::getAsString,
    &bedrock::OpenSslModule::X509::getAsByteArray,
    &bedrock::OpenSslModule::X509::getSHA256Fingerprint,
    &bedrock::OpenSslModule::X509::getSubject,
    &bedrock::OpenSslModule::X509::getValidity,
    &bedrock::OpenSslModule::X509::getIssuer,
    &bedrock::OpenSslModule::X509::getSerialNumber,
    &bedrock::OpenSslModule::X509::validateCertificate,
    &bedrock::readBundle,
    &bedrock::OpenSslModule::Pkcs12::getPrivateExponent,
    &bedrock::certificates::readKeyBundle,
    &bedrock::OpenSslModule::Options::addRevocationList,
    &bedrock::certificates::detail::readCertificates,
    &bedrock::certificates::checkTimeStamp,
    &bedrock::certificates::makeSelfSignedCertificate,
};
