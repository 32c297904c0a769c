#pragma once

#include "xml/KnownNames.hpp"

#include <string_view>

namespace opc::standard_signatures::vocabulary {

/// The local names of the elements of XML Signature 1.0 and 1.1 with RFC 9231, of what XML Encryption 1.0 and 1.1 have in the names
/// of keys, of package signatures, and of XAdES in all its versions. Programs that read pages and don't look at namespaces show
/// nothing of them.
// clang-format off
constexpr std::string_view ELEMENTS_OF_SIGNATURES[] = {
    "A", "AgreementMethod", "AllDataObjectsTimeStamp", "AllSignedDataObjects", "Any", "AnyValidationData",
    "ArchiveTimeStamp", "ArchiveTimeStampV2", "AttrAuthoritiesCertValues", "AttributeCertificateRefs",
    "AttributeCertificateRefsV2", "AttributeRevocationRefs", "AttributeRevocationValues", "B", "Base",
    "BasePointParams", "ByKey", "ByName", "CRLIdentifier", "CRLRef", "CRLRefs", "CRLValues",
    "CanonicalizationMethod", "CarriedKeyName", "Cert", "CertDigest", "CertID", "CertRefs",
    "CertificateValues", "CertifiedRole", "CertifiedRoles", "CertifiedRolesV2", "CipherData",
    "CipherReference", "CipherValue", "City", "ClaimedRole", "ClaimedRoles", "CoFactor", "Comment",
    "CommitmentTypeId", "CommitmentTypeIndication", "CommitmentTypeQualifier", "CommitmentTypeQualifiers",
    "CompleteCertificateRefs", "CompleteCertificateRefsV2", "CompleteRevocationRefs", "ConcatKDFParams",
    "CounterSignature", "CountryName", "Curve", "CurveParams", "CurveParamsType", "DEREncodedKeyValue",
    "DSAKeyValue", "DataObjectFormat", "DataReference", "DerivedKey", "DerivedKeyName", "Description",
    "DigestAlgAndValue", "DigestAlgAndValueType", "DigestMethod", "DigestValue", "DocumentationReference",
    "DocumentationReferences", "DomainParameters", "ECDSAKeyValue", "ECKeyValue", "ECParameters",
    "EncapsulatedCRLValue", "EncapsulatedOCSPValue", "EncapsulatedPKIData", "EncapsulatedTimeStamp",
    "EncapsulatedX509Certificate", "EncodedTime", "Encoding", "EncryptedData", "EncryptedKey",
    "EncryptionMethod", "EncryptionProperties", "EncryptionProperty", "ExplicitParams", "ExplicitText",
    "Exponent", "FieldID", "FieldParams", "Format", "G", "GnB", "HMACOutputLength", "HashDataInfo",
    "Identifier", "Include", "InclusiveNamespaces", "IndividualDataObjectsTimeStamp", "IssueTime", "Issuer",
    "IssuerSerial", "IssuerSerialV2", "IterationCount", "J", "K", "K1", "K2", "K3", "KA-Nonce",
    "KeyDerivationMethod", "KeyInfo", "KeyInfoReference", "KeyLength", "KeyName", "KeyReference",
    "KeyRetrievalMethod", "KeySize", "KeyValue", "M", "MGF", "Manifest", "MaskGenerationFunction",
    "MasterKeyName", "MgmtData", "MimeType", "Modulus", "NamedCurve", "NoticeNumbers", "NoticeRef", "Number",
    "OAEPparams", "OCSPIdentifier", "OCSPRef", "OCSPRefs", "OCSPValues", "Object", "ObjectIdentifier",
    "ObjectReference", "Order", "Organization", "OriginatorKeyInfo", "OtherAttributeCertificate",
    "OtherCertificate", "OtherRef", "OtherRefs", "OtherSource", "OtherValue", "OtherValues", "P",
    "PBKDF2-params", "PGPData", "PGPKeyID", "PGPKeyPacket", "PKCS7signedData", "PRF", "PgenCounter", "PnB",
    "PostalCode", "Prime", "PrimeFieldElem", "ProducedAt", "PublicKey", "Q", "QualifyingProperties",
    "QualifyingPropertiesReference", "RSAKeyValue", "RSAPSSParams", "RecipientKeyInfo",
    "RecomputedDigestValue", "Reference", "ReferenceInfo", "ReferenceList", "RefsOnlyTimeStamp",
    "RefsOnlyTimeStampV2", "RelationshipReference", "RelationshipsGroupReference", "RenewedDigests",
    "RenewedDigestsV2", "ResponderID", "RetrievalMethod", "RevocationValues", "SPDocSpecification",
    "SPKIData", "SPKISexp", "SPURI", "SPUserNotice", "Salt", "SaltLength", "Seed", "SigAndRefsTimeStamp",
    "SigAndRefsTimeStampV2", "SigPolDocLocalURI", "SigPolicyHash", "SigPolicyId", "SigPolicyLocalURI",
    "SigPolicyQualifier", "SigPolicyQualifiers", "Signature", "SignatureMethod", "SignaturePolicyDocument",
    "SignaturePolicyId", "SignaturePolicyIdentifier", "SignaturePolicyImplied", "SignaturePolicyStore",
    "SignatureProductionPlace", "SignatureProductionPlaceV2", "SignatureProperties", "SignatureProperty",
    "SignatureTime", "SignatureTimeStamp", "SignatureValue", "SignedAssertion", "SignedAssertions",
    "SignedDataObjectProperties", "SignedInfo", "SignedProperties", "SignedSignatureProperties", "SignerRole",
    "SignerRoleV2", "SigningCertificate", "SigningCertificateV2", "SigningTime", "Specified",
    "StateOrProvince", "StreetAddress", "TimeStamp", "TimeStampValidationData", "TnB", "TrailerField",
    "Transform", "Transforms", "UnsignedDataObjectProperties", "UnsignedDataObjectProperty",
    "UnsignedProperties", "UnsignedSignatureProperties", "ValidationData", "Value", "X",
    "X509AttributeCertificate", "X509CRL", "X509Certificate", "X509Data", "X509Digest", "X509IssuerName",
    "X509IssuerSerial", "X509SKI", "X509SerialNumber", "X509SubjectName", "XMLTimeStamp", "XPath", "Y", "int"};
// clang-format on
static_assert(areSorted(ELEMENTS_OF_SIGNATURES));

} // namespace opc::standard_signatures::vocabulary
