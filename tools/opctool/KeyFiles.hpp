#pragma once

#include <bedrock/crypto/RSAPrivateKey.hpp>
#include <bedrock/crypto/RSAPublicKey.hpp>
#include <bedrock/crypto/RsaKeyPair.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opctool {

/// @throws opc::Exception  if the file can't be read
std::vector<unsigned char> readFile(const std::string& path);

/// The RSA key in a file, PEM or DER, of 1024, 2048 or 4096 bits and without a password.
/// @throws opc::Exception  if there is none
/// @{
std::shared_ptr<bedrock::crypto::RSAPrivateKey> readPrivateKey(const std::string& path);
std::shared_ptr<bedrock::crypto::RSAPublicKey> readPublicKey(const std::string& path);
/// @}

/// Writes BASE.key, which its owner alone can read, and BASE.pub, both PEM. If one of them can't be written,
/// what was written of them goes again, and what they were to replace stays.
/// @param replace  whether files of these names may be replaced
/// @throws opc::Exception
void writeKeyPair(const bedrock::crypto::RsaKeyPair& pair, const std::string& base, bool replace);

} // namespace opctool
