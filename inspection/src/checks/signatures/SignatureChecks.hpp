#pragma once

#include "checks/Findings.hpp"
#include "checks/signatures/RelationshipIds.hpp"
#include "checks/signatures/Signatures.hpp"

#include <string>
#include <vector>

namespace opc::inspection {

/// The parts of `checkSignatures`. What holds for one form of signatures only is said there.
/// @{

/// The origin, the signature parts and the certificate parts, and what leads to them.
void checkSignatureParts(const Subject& subject, const std::vector<FoundSignature>& signatures,
                         Findings& findings);

/// What stands in one signature part, without regard to the rest of the package.
void checkSignatureStructure(const FoundSignature& signature, Findings& findings);

/// What the manifest of a signature says about the parts of the package.
void checkManifest(const Subject& subject, RelationshipIds& ids, const FoundSignature& signature,
                   Findings& findings);

/// Algorithms, keys and certificates.
void checkSignatureStrength(const FoundSignature& signature, Findings& findings);

/// What no signature names.
void checkCoverage(const Subject& subject, const std::vector<FoundSignature>& signatures, Findings& findings);

/// Digests and values of signatures in the own form.
void checkOwnSignatures(const Subject& subject, const std::vector<FoundSignature>& signatures,
                        Findings& findings);

/// @}

/// @param at  nothing for the whole part
Place placeIn(const PartView& part, const SignaturePlace& at = {});

Place placeIn(const RelationshipsView& source, const RelationshipView& relationship);

} // namespace opc::inspection
