#include "signing/SignatureObjects.hpp"

#include "crypto/Digest.hpp"
#include "document/Vocabulary.hpp"
#include "signing/SignatureText.hpp"

#include <bedrock/crypto/SignatureValue.hpp>

namespace opc::standard_signatures {

namespace {

using bedrock::certificates::X509Certificate;
using bedrock::crypto::PublicKeyKind;

std::string composeCertificate(const X509Certificate& certificate) {
    return "<X509Certificate>" + certificate.getAsString() + "</X509Certificate>";
}

/// The curve as RFC 5480 section 2.1.1.1 numbers it.
std::string curveURI(const std::string& curve) {
    return curve == "P-256"   ? "urn:oid:1.2.840.10045.3.1.7"
           : curve == "P-384" ? "urn:oid:1.3.132.0.34"
                              : "urn:oid:1.3.132.0.35";
}

std::string composeKeyValue(const std::vector<unsigned char>& publicKey) {
    const PublicKeyKind kind = bedrock::crypto::describePublicKey(publicKey);
    const bedrock::crypto::PublicKeyNumbers numbers = bedrock::crypto::getPublicKeyNumbers(publicKey);
    if (kind.algorithm == PublicKeyKind::Algorithm::EC)
        return "<ECKeyValue xmlns=\"" + std::string(vocabulary::SIGNATURE_11) + "\"><NamedCurve URI=\"" +
               curveURI(kind.curve) + "\"/><PublicKey>" + base64Of(numbers.point) +
               "</PublicKey></ECKeyValue>";
    return "<RSAKeyValue><Modulus>" + base64Of(numbers.modulus) + "</Modulus><Exponent>" +
           base64Of(numbers.exponent) + "</Exponent></RSAKeyValue>";
}

} // namespace

std::string composePackageObject(const std::string& manifest, const std::string& time) {
    return "<Object Id=\"idPackageObject\">" + manifest +
           "<SignatureProperties><SignatureProperty Id=\"idSignatureTime\" Target=\"#idPackageSignature\">"
           "<mdssi:SignatureTime xmlns:mdssi=\"" +
           std::string(vocabulary::PACKAGE_SIGNATURE) +
           "\"><mdssi:Format>YYYY-MM-DDThh:mm:ssTZD</mdssi:Format><mdssi:Value>" + time +
           "</mdssi:Value></mdssi:SignatureTime></SignatureProperty></SignatureProperties></Object>";
}

std::string composeOfficeObject(const std::string& comments) {
    return "<Object Id=\"idOfficeObject\"><SignatureProperties>"
           "<SignatureProperty Id=\"idOfficeV1Details\" Target=\"#idPackageSignature\">"
           "<SignatureInfoV1 xmlns=\"http://schemas.microsoft.com/office/2006/digsig\">"
           "<SetupID/><SignatureText/><SignatureImage/><SignatureComments>" +
           escapedText(comments) +
           "</SignatureComments><WindowsVersion>10.0</WindowsVersion><OfficeVersion>16.0</OfficeVersion>"
           "<ApplicationVersion>16.0</ApplicationVersion><Monitors>1</Monitors>"
           "<HorizontalResolution>1920</HorizontalResolution><VerticalResolution>1080</VerticalResolution>"
           "<ColorDepth>32</ColorDepth>"
           "<SignatureProviderId>{00000000-0000-0000-0000-000000000000}</SignatureProviderId>"
           "<SignatureProviderUrl/><SignatureProviderDetails>9</SignatureProviderDetails>"
           "<SignatureType>1</SignatureType></SignatureInfoV1></SignatureProperty></SignatureProperties>"
           "</Object>";
}

std::string composeSignedProperties(const X509Certificate& certificate, const DigestMethod& method,
                                    const std::string& time) {
    const std::vector<unsigned char> der = certificate.getAsByteArray();
    return "<Object><xd:QualifyingProperties xmlns:xd=\"http://uri.etsi.org/01903/v1.3.2#\" "
           "Target=\"#idPackageSignature\"><xd:SignedProperties Id=\"idSignedProperties\">"
           "<xd:SignedSignatureProperties><xd:SigningTime>" +
           time + "</xd:SigningTime><xd:SigningCertificate><xd:Cert><xd:CertDigest>" +
           composeDigest(method, digestOf(std::string(der.begin(), der.end()), method)) +
           "</xd:CertDigest><xd:IssuerSerial><X509IssuerName>" + escapedText(certificate.getIssuer()) +
           "</X509IssuerName><X509SerialNumber>" + certificate.getSerialNumber() +
           "</X509SerialNumber></xd:IssuerSerial></xd:Cert></xd:SigningCertificate>"
           "<xd:SignaturePolicyIdentifier><xd:SignaturePolicyImplied/></xd:SignaturePolicyIdentifier>"
           "</xd:SignedSignatureProperties></xd:SignedProperties></xd:QualifyingProperties></Object>";
}

std::string composeKeyInfo(const Signer& signer) {
    if (signer.certificate.empty())
        return "<KeyInfo><KeyValue>" + composeKeyValue(signer.key.getPublicKey()) + "</KeyValue></KeyInfo>";
    std::string certificates = composeCertificate(signer.certificate);
    for (const X509Certificate& one : signer.chain)
        certificates += composeCertificate(one);
    return "<KeyInfo><X509Data>" + certificates + "</X509Data></KeyInfo>";
}

} // namespace opc::standard_signatures
