#pragma once

#include <opc/model/ContentType.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>
#include <opc/model/URI.hpp>

#include <optional>
#include <string>

/// How signatures stand in a package: an origin part, which a relationship of the package leads to and
/// which holds nothing, and from it a relationship to each signature part.

namespace opc::model {

class Package;

/// The identifier of the countersignature. Those of other signatures are numbers.
extern const std::u16string COUNTERSIGNATURE_ID;

URI getOriginPartURI();
ContentType getOriginPartContentType();
std::u16string getOriginRelationshipType();
ContentType getSignaturePartContentType();
std::u16string getSignatureRelationshipType();

/// By these relationships the signatures of office programs are found, in a form that isn't read.
/// @{
std::u16string getForeignOriginRelationshipType();
std::u16string getForeignSignatureRelationshipType();
/// @}

/// "sig" and the identifier.
std::u16string getSignatureName(const std::u16string& signatureID);

/// The part of the signature of that name.
/// @throws SignatureNotFound  if `name` begins with a slash
/// @throws InvalidPartName, InvalidURI
PartName getSignaturePartName(const std::u16string& name);

/// "DSRel" and the identifier.
std::u16string getSignatureRelationshipID(const std::u16string& signatureID);

/// The name of the origin part, where there is one.
std::optional<URI> findOriginURI(const Package& package);

/// Whether it is the relationship from the origin part to the countersignature. No signature covers it: it comes
/// when the others have been signed.
bool leadsToCountersignature(const Relationship& relationship, const URI& originURI);

} // namespace opc::model
