#pragma once

namespace opc::model {

class DigitalSignatureData;
class Package;
class SelectableRelationships;

/// Fills in the parts and relationships of the package that a signature covers: `m_signedPartNames`, which must be
/// empty, and `m_signedRelationships`.
/// @throws InvalidSignature  with code 102, if the signature covers something that the package doesn't have or that
///                           no signature can cover
/// @throws opc::Exception    if a reference isn't the name of a part
void fillUpSignedEntities(const Package& package, DigitalSignatureData& data,
                          SelectableRelationships& selectable);

} // namespace opc::model
