#pragma once

#include "CertificateFile.hpp"

#include <bedrock/certificates/KeyBundle.hpp>
#include <bedrock/certificates/PKCS12Certificate.hpp>
#include <bedrock/certificates/SelfSignedCertificate.hpp>
#include <bedrock/certificates/TimeStamp.hpp>
#include <bedrock/crypto/RsaKeyPair.hpp>
#include <bedrock/crypto/SignatureValue.hpp>
#include <bedrock/crypto/SigningKey.hpp>
#include <bedrock/crypto/interfaces/ICryptoProvider.hpp>

namespace bedrock {

/// The functions of the cryptographic services that need OpenSSL. Everything else in the library calls OpenSSL through
/// these alone.
///
/// A program that links the static library has them with it, and loads OpenSSL when it starts. `LoadedOpenSsl.cpp` defines
/// them a second time: a program or library that links it in front of the static one doesn't link OpenSSL. It loads a
/// module that does, when one of the functions is called first.
struct OpenSslModule {
    using Bytes = std::vector<unsigned char>;
    using Options = certificates::CertificateValidationOptions;
    using Pkcs12 = certificates::PKCS12Certificate;
    using X509 = certificates::X509Certificate;

    crypto::interfaces::ICryptoProvider& (*provider)();
    decltype(&crypto::generateRsaKeyPair) generateRsaKeyPair;

    decltype(&crypto::describePublicKey) describePublicKey;
    decltype(&crypto::makeRSAPublicKey) makeRSAPublicKey;
    decltype(&crypto::makeECPublicKey) makeECPublicKey;
    decltype(&crypto::checkSignatureValue) checkSignatureValue;
    decltype(&crypto::makeSignatureValue) makeSignatureValue;
    decltype(&crypto::readSigningKey) readSigningKey;
    decltype(&crypto::getPublicKeyNumbers) publicKeyNumbers;
    decltype(&crypto::generateECKey) generateECKey;
    decltype(&crypto::readPublicKey) readPublicKey;

    X509 (*certificate)(const Bytes& bytes);
    decltype(&X509::getKeySize) keySize;
    decltype(&X509::getModulus) modulus;
    decltype(&X509::getPublicExponent) publicExponent;
    decltype(&X509::getPublicKey) publicKey;
    decltype(&X509::isValidForDigitalSigning) isValidForDigitalSigning;
    decltype(&X509::getAsString) asString;
    decltype(&X509::getAsByteArray) asByteArray;
    decltype(&X509::getSHA256Fingerprint) fingerprint;
    decltype(&X509::getSubject) subject;
    decltype(&X509::getValidity) validity;
    decltype(&X509::getIssuer) issuer;
    decltype(&X509::getSerialNumber) serialNumber;
    decltype(&X509::validateCertificate) validate;

    Pkcs12 (*bundle)(const Bytes& bytes, const std::string& password);
    decltype(&Pkcs12::getPrivateExponent) privateExponent;
    decltype(&certificates::readKeyBundle) readKeyBundle;

    decltype(&Options::addRevocationList) addRevocationList;

    decltype(&certificates::detail::readCertificates) fileOfCertificates;
    decltype(&certificates::checkTimeStamp) timeStamp;
    decltype(&certificates::makeSelfSignedCertificate) selfSigned;
};

} // namespace bedrock
