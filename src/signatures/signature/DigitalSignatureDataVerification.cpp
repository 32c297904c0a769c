#include "signatures/signature/DigitalSignatureData.hpp"

#include "signatures/algorithms/CryptoErrors.hpp"
#include "signatures/algorithms/RsaKeys.hpp"
#include "signatures/digests/SignedText.hpp"
#include "signatures/signature/VerificationStatus.hpp"

#include <bedrock/certificates/CertificateValidationOptions.hpp>
#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/TrustStore.hpp>
#include <bedrock/codesigning_verifier/CodesigningException.hpp>
#include <bedrock/codesigning_verifier/Verify.hpp>
#include <bedrock/crypto/RSAVerifier.hpp>
#include <bedrock/crypto/utils/Base64.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <algorithm>
#include <chrono>

/// @file
/// The first half of a verification: whether the signature value holds over `SignedInfo`, by a key or a
/// certificate.

namespace opc::model {

namespace {

using bedrock::certificates::CertificateValidationOptions;
using bedrock::certificates::TrustStore;
using bedrock::certificates::X509Certificate;
using bedrock::certificates::X509CertificateChain;
using bedrock::codesigning_verifier::CodesigningVerificationOptions;
using bedrock::codesigning_verifier::CodesigningVerificationStatus;
using bedrock::codesigning_verifier::ErrorMap;
using bedrock::codesigning_verifier::FingerprintStore;
using bedrock::crypto::utils::base64Decode;

[[noreturn]] void throwUnsupportedKeySize() {
    throw InvalidSignature("Only 1024, 2048 or 4096 bits RSA signatures are supported.", ErrorMap<103>());
}

CodesigningVerificationOptions::SignatureMethod toSignatureMethodOption(std::uint64_t bits) {
    switch (bits) {
    case 1024:
        return CodesigningVerificationOptions::SignatureMethod::RSA1024;
    case 2048:
        return CodesigningVerificationOptions::SignatureMethod::RSA2048;
    case 4096:
        return CodesigningVerificationOptions::SignatureMethod::RSA4096;
    default:
        throwUnsupportedKeySize();
    }
}

CodesigningVerificationOptions::SignatureDigestMethod toDigestOption(DigestMethod method) {
    using Option = CodesigningVerificationOptions::SignatureDigestMethod;
    switch (method) {
    case DigestMethod::MD5:
        return Option::MD5;
    case DigestMethod::SHA1:
        return Option::SHA1;
    case DigestMethod::SHA224:
        return Option::SHA224;
    case DigestMethod::SHA256:
        return Option::SHA256;
    case DigestMethod::SHA384:
        return Option::SHA384;
    case DigestMethod::SHA512:
        return Option::SHA512;
    }
    throw InvalidSignature("Unknown digest method.", ErrorMap<103>());
}

/// The time in whole seconds; nothing if the signature doesn't say when it was made. The clock counts from 1677 to
/// 2262: a time beyond becomes the first or the last one.
std::optional<std::chrono::system_clock::time_point> toTimePoint(const boost::posix_time::ptime& time) {
    using TimePoint = std::chrono::system_clock::time_point;
    using std::chrono::seconds;
    if (time.is_special())
        return std::nullopt;
    const boost::posix_time::ptime epoch(boost::gregorian::date(1970, 1, 1));
    const auto sinceEpoch = [](TimePoint limit) {
        return std::chrono::duration_cast<seconds>(limit.time_since_epoch());
    };
    return TimePoint(std::clamp(seconds((time - epoch).total_seconds()), sinceEpoch(TimePoint::min()),
                                sinceEpoch(TimePoint::max())));
}

} // namespace

void DigitalSignatureData::throwIfKeySizeDiffers(std::uint64_t bits) const {
    const SignatureMethod method = m_signatureParams.getSignatureMethod();
    if (method != SignatureMethod::NoKey && signatureMethodToKeySize(method) != bits)
        throw InvalidSignature(
            "Verification material doesn't match the signature parameters in the signature.",
            ErrorMap<103>());
}

DigitalSignatureVerificationStatus DigitalSignatureData::verifyWithKey(const Bytes& publicKey) const {
    if (publicKey.empty())
        throw InvalidSignature("Verification by an empty public key was attempted.", ErrorMap<103>());
    return translateVerificationFailures([&] {
        const auto verifier = createVerifier(publicKey.size() / 128 * 1024, publicKey);
        return DigitalSignatureVerificationStatus(CodesigningVerificationStatus(verifier->verify(
            toSignedBytes(m_content.signedInfoXML), m_signatureValue, createDigestEngine())));
    });
}

std::shared_ptr<bedrock::crypto::RSAVerifier>
DigitalSignatureData::createVerifier(std::uint64_t bits, const Bytes& publicKey) const {
    throwIfKeySizeDiffers(bits);
    auto verifier =
        translateVerificationFailures([&] { return createRsaVerifier(*m_cryptoEngine, bits, publicKey); });
    if (!verifier)
        throwUnsupportedKeySize();
    return verifier;
}

DigitalSignatureVerificationStatus
DigitalSignatureData::verifyWithFingerprints(const FingerprintStore& fingerprints,
                                             const TrustStore& trustStore,
                                             const CertificateValidationOptions& options) const {
    if (m_certificate)
        return verifyWithCertificate(*m_certificate, fingerprints, getCertificateChain(), trustStore,
                                     options);
    if (!fingerprints.isSkippingVerification() && !fingerprints.usingFingerprintEscapeHatch())
        return makeVerificationStatus(ErrorMap<9>());
    return verifyWithKeyValue();
}

DigitalSignatureVerificationStatus DigitalSignatureData::verifyWithKeyValue() const {
    if (!m_keyValue)
        throw InvalidSignature(
            "Signature does not contain a default key or certificate. Please use a verify method "
            "which takes a key/cert.",
            ErrorMap<103>());
    const std::uint64_t bits = rsaKeySize(m_signatureParams.getSignatureMethod());
    if (bits == 0)
        throw InvalidSignature("Signature Method is incorrect.", ErrorMap<103>());
    return verifyWithKey(translateVerificationFailures([&] {
        return encodeRsaPublicKey(*m_cryptoEngine, bits, base64Decode(m_keyValue->modulus),
                                  base64Decode(m_keyValue->exponent));
    }));
}

/// The size of the certificate's key in bits, which must be that of the signature.
std::uint64_t DigitalSignatureData::requireKeySize(const X509Certificate& certificate) const {
    if (certificate.empty())
        throw InvalidSignature("Verification by an empty certificate was attempted.", ErrorMap<13>());
    const std::uint64_t bits =
        translateVerificationFailures([&] { return certificate.getModulus().size() * 8; });
    throwIfKeySizeDiffers(bits);
    return bits;
}

DigitalSignatureVerificationStatus
DigitalSignatureData::verifyWithCertificate(const X509Certificate& certificate,
                                            const FingerprintStore& fingerprints,
                                            const X509CertificateChain& chain, const TrustStore& trustStore,
                                            const CertificateValidationOptions& options) const {
    TrustStore trusted = trustStore;
    if (trusted.empty())
        trusted.addSystemCertificates(TrustStore::Usage::Signing, false);
    const auto signatureMethod = toSignatureMethodOption(requireKeySize(certificate));
    const CodesigningVerificationOptions verificationOptions(
        signatureMethod, toDigestOption(m_signatureParams.getDigestMethod()),
        CodesigningVerificationOptions::SignaturePaddingMode::PKCS1v15, options);
    try {
        return DigitalSignatureVerificationStatus(bedrock::codesigning_verifier::verify(
            toSignedBytes(m_content.signedInfoXML), m_signatureValue, toTimePoint(m_signedTime), certificate,
            chain, trusted, fingerprints, verificationOptions));
    } catch (const bedrock::codesigning_verifier::CodesigningException& e) {
        throw InvalidSignature("OPC file is corrupt: '" + std::to_string(e.getErrorCode().value()) + "'",
                               e.getErrorCode());
    }
}

} // namespace opc::model
