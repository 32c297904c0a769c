#pragma once

#include <vector>

namespace opc::model {

class DigitalSignatureData;
class PartDigesters;
class SignedRelationships;
struct Reference;

/// Computes every digest again that a signature references: those of its objects, of parts and of relationships.
/// @param data  includes the signed parts and relationships of the package
/// @return the references whose digests differ
/// @throws InvalidSignature  with code 104: a digest can't be computed, or the signature has the identifier of a
///                           countersignature and wasn't made as one
std::vector<const Reference*> findDifferences(const DigitalSignatureData& data,
                                              const SignedRelationships& relationships,
                                              PartDigesters& digesters);

} // namespace opc::model
