#pragma once

#include <opc/model/SignatureParams.hpp>

#include <bedrock/crypto/CryptoEngine.hpp>

#include <memory>
#include <vector>

/// @file
/// The operations of the cryptographic services that exist once for each size of key.

namespace opc::model {

/// The public key of `method`'s size in its encoded form.
/// @return null if `method` stands for no size
/// @throws bedrock::crypto::utils::Exception  if the bytes are no key of that size
std::shared_ptr<bedrock::crypto::RSAPublicKey> createRsaPublicKey(const bedrock::crypto::CryptoEngine& engine,
                                                                  SignatureMethod method,
                                                                  const std::vector<unsigned char>& encoded);

} // namespace opc::model
