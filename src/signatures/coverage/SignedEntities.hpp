#pragma once

#include <opc/model/PartName.hpp>

#include <memory>
#include <vector>

namespace opc::model {

class Package;
class SelectableRelationships;
class SignedRelationships;
struct SignatureContent;

/// The parts and relationships of a package that a signature covers.
struct SignedEntities {
    std::vector<PartName> partNames;
    std::shared_ptr<const SignedRelationships> relationships; ///< never null
};

/// Finds in the package what the manifest of a signature names.
/// @throws InvalidSignature  with code 102, if the signature covers something that the package doesn't have or that
///                           no signature can cover
/// @throws opc::Exception    if a reference isn't the name of a part
SignedEntities findSignedEntities(const Package& package, const SignatureContent& content,
                                  SelectableRelationships& selectable);

} // namespace opc::model
