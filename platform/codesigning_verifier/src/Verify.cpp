#include <bedrock/codesigning_verifier/Verify.hpp>

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

namespace bedrock::codesigning_verifier {

namespace {

using Bytes = std::vector<unsigned char>;
using certificates::CertificateChainStatus;
using certificates::CertificateValidationOptions;
using certificates::X509Certificate;
using crypto::DigestAlgorithm;
using crypto::utils::SignatureVerificationStatus;
using Options = CodesigningVerificationOptions;

std::size_t keySizeOf(Options::SignatureMethod method) {
    switch (method) {
    case Options::SignatureMethod::RSA1024:
        return 1024;
    case Options::SignatureMethod::RSA2048:
        return 2048;
    case Options::SignatureMethod::RSA4096:
        return 4096;
    }
    throw CodesigningException("The signature method is unknown.", ErrorMap<15>());
}

DigestAlgorithm algorithmOf(Options::SignatureDigestMethod method) {
    switch (method) {
    case Options::SignatureDigestMethod::MD5:
        return DigestAlgorithm::MD5;
    case Options::SignatureDigestMethod::SHA1:
        return DigestAlgorithm::SHA1;
    case Options::SignatureDigestMethod::SHA224:
        return DigestAlgorithm::SHA224;
    case Options::SignatureDigestMethod::SHA384:
        return DigestAlgorithm::SHA384;
    case Options::SignatureDigestMethod::SHA256:
        return DigestAlgorithm::SHA256;
    case Options::SignatureDigestMethod::SHA512:
        return DigestAlgorithm::SHA512;
    }
    throw CodesigningException("The digest method is unknown.", ErrorMap<15>());
}

SignatureVerificationStatus checkValue(const Bytes& signedBytes, const Bytes& signatureValue,
                                       const X509Certificate& certificate, const Options& options) {
    const std::size_t bits = keySizeOf(options.getSignatureMethod());
    const DigestAlgorithm algorithm = algorithmOf(options.getSignatureDigestMethod());
    if (options.getSignaturePaddingMode() != Options::SignaturePaddingMode::PKCS1v15)
        throw CodesigningException("The padding mode is unknown.", ErrorMap<15>());
    const Bytes modulus = certificate.getModulus(); // empty if the key isn't an RSA key
    if (modulus.size() * 8 != bits)
        throw CodesigningException("The certificate's key doesn't fit the signature method.", ErrorMap<15>());

    crypto::cryptopp::CryptoProvider provider;
    const auto key = provider.createRSAPublicKey(bits, modulus, certificate.getPublicExponent());
    const auto verifier = provider.createRSAVerifier(bits, key, crypto::RSAPaddingMode::PKCS1v15,
                                                     provider.getDefaultCryptoPRNG());
    return verifier->verify(signedBytes, signatureValue, provider.createDigestEngine(algorithm));
}

ErrorCode codeOf(CertificateChainStatus status) {
    switch (status) {
    case CertificateChainStatus::Good:
        return ErrorMap<0>();
    case CertificateChainStatus::Expired:
        return ErrorMap<3>();
    case CertificateChainStatus::NotYetValid:
        return ErrorMap<4>();
    case CertificateChainStatus::UnknownIssuer:
        return ErrorMap<5>();
    case CertificateChainStatus::SelfSigned:
        return ErrorMap<6>();
    case CertificateChainStatus::WrongPurpose:
        return ErrorMap<7>();
    case CertificateChainStatus::InvalidChain:
        break;
    case CertificateChainStatus::Revoked:
        return ErrorMap<10>();
    case CertificateChainStatus::WeakAlgorithm:
        return ErrorMap<11>();
    case CertificateChainStatus::BadSignature:
        return ErrorMap<16>();
    case CertificateChainStatus::RevocationUnknown:
        return ErrorMap<19>();
    }
    return ErrorMap<8>();
}

CodesigningVerificationStatus check(const Bytes& signedBytes, const Bytes& signatureValue,
                                    std::optional<std::chrono::system_clock::time_point> signedTime,
                                    const X509Certificate& certificate,
                                    const certificates::X509CertificateChain& chain,
                                    const certificates::TrustStore& trustStore,
                                    const FingerprintStore& fingerprints, const Options& options) {
    if (certificate.empty())
        throw CodesigningException("The certificate is empty.", ErrorMap<13>());
    CodesigningVerificationStatus value(checkValue(signedBytes, signatureValue, certificate, options));
    if (!value.isProperlyCodesigned() || fingerprints.hasFingerprint(certificate.getSHA256Fingerprint()))
        return value;

    CertificateValidationOptions validation = options.getCertificateValidationOptions();
    if (!validation.getCheckTime())
        validation.setCheckTime(signedTime);
    const auto results = certificate.validateCertificate(chain, validation, trustStore);
    return {codeOf(results.getCertificateChainStatus()), results};
}

} // namespace

CodesigningVerificationStatus detail::verify(const Bytes& signedBytes, const Bytes& signatureValue,
                                             std::optional<std::chrono::system_clock::time_point> signedTime,
                                             const X509Certificate& certificate,
                                             const certificates::X509CertificateChain& chain,
                                             const certificates::TrustStore& trustStore,
                                             const FingerprintStore& fingerprints, const Options& options) {
    try {
        return check(signedBytes, signatureValue, signedTime, certificate, chain, trustStore, fingerprints,
                     options);
    } catch (const crypto::utils::InvalidKey& failure) {
        throw CodesigningException(failure.what(), ErrorMap<17>());
    } catch (const crypto::utils::CouldNotComputeDigest& failure) {
        throw CodesigningException(failure.what(), ErrorMap<18>());
    } catch (const crypto::utils::Exception& failure) {
        throw CodesigningException(failure.what(), ErrorMap<12>());
    } catch (const certificates::CertificateException& failure) {
        throw CodesigningException(failure.what(), ErrorMap<19>());
    }
}

} // namespace bedrock::codesigning_verifier
