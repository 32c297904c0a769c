#pragma once

#include "crypto/Methods.hpp"

#include <opc/standard_signatures/Signing.hpp>

#include <string>
#include <vector>

namespace opc::standard_signatures {

/// Composes the document of a new signature and signs it.
/// @param objects  the elements Object, of which those with an Id in `ids` are signed: their own, or that of an element in
///                 them
/// @return the document in UTF-8
/// @throws SigningRefused  a text in the objects has characters that XML doesn't have, or they are too large
/// @throws bedrock::crypto::utils::Exception  the key can't sign
std::string composeSignedDocument(const Signer& signer, const SignatureMethod& method,
                                  const DigestMethod& digest, const std::string& objects,
                                  const std::vector<std::string>& ids);

} // namespace opc::standard_signatures
