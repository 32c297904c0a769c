#pragma once

#include "checks/signatures/SignatureDocument.hpp"

#include <opc/inspection/SignatureExtent.hpp>

#include <vector>

namespace opc::inspection {

/// The two families of relationship types and content types under which packages have signatures.
enum class SignatureForm {
    Standard, ///< ".../digital-signature/origin", as office programs write it
    Own       ///< ".../digitalsignature/origin", as `model::DigitalSignatureManager` writes it
};

/// Whether a relationship leads to the origin of signatures, to a signature, to a certificate of one.
/// @{
bool leadsToOrigin(const RelationshipView& relationship);
bool leadsToSignature(const RelationshipView& relationship);
bool leadsToCertificate(const RelationshipView& relationship);
/// @}

bool isOriginType(const std::string& mediaType);
bool isSignatureType(const std::string& mediaType);
bool isCertificateType(const std::string& mediaType);

/// A signature part that a relationship of an origin leads to.
struct FoundSignature {
    SignatureForm form;
    const PartView* part;
    SignatureDocument document;
};

/// The signatures of a package: from its own relationships over the origin. Each part counts once.
std::vector<FoundSignature> findSignatures(const Subject& subject);

/// The name of the part in the URI of a manifest's reference, without its percent-encoding and without what is behind.
std::string partNameOf(const SignatureReference& reference);

/// What the query of the reference states as the content type; nothing without such a query.
std::optional<std::string> statedContentType(const SignatureReference& reference);

} // namespace opc::inspection
