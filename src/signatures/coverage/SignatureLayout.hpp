#pragma once

#include <opc/model/ContentType.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>
#include <opc/model/URI.hpp>

#include <optional>
#include <string>

/// The parts and relationships of signatures: a relationship of the package leads to the origin part, which is empty, and
/// from there a relationship leads to each signature part.

namespace opc::model {

class Package;

/// The identifier of the countersignature. Those of other signatures are numbers.
extern const std::u16string COUNTERSIGNATURE_ID;

URI getOriginPartURI();
ContentType getOriginPartContentType();
std::u16string getOriginRelationshipType();
ContentType getSignaturePartContentType();
std::u16string getSignatureRelationshipType();

/// These relationships lead to signatures as office programs make them, in a form that isn't read.
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

/// The name of the origin part, if there is one.
std::optional<URI> findOriginURI(const Package& package);

/// Whether it is the relationship from the origin part to the countersignature. No signature covers it, because it is
/// created after the others are signed.
bool leadsToCountersignature(const Relationship& relationship, const URI& originURI);

} // namespace opc::model
