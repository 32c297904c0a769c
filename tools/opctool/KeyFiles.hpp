#pragma once

#include <bedrock/crypto/RSAPrivateKey.hpp>
#include <bedrock/crypto/RSAPublicKey.hpp>
#include <bedrock/crypto/RsaKeyPair.hpp>

#include <memory>
#include <string>
#include <vector>

namespace opctool {

/// @throws opc::Exception  the file can't be read
std::vector<unsigned char> readFile(const std::string& path);

/// The RSA key in a file, in PEM or DER, of 1024, 2048 or 4096 bits and without a password.
/// @throws opc::Exception  there is none
/// @{
std::shared_ptr<bedrock::crypto::RSAPrivateKey> readPrivateKey(const std::string& path);
std::shared_ptr<bedrock::crypto::RSAPublicKey> readPublicKey(const std::string& path);
/// @}

/// Writes BASE.key, which only its owner can read, and BASE.pub, both in PEM. If one of them can't be written,
/// nothing of them stays, and the files that they would replace don't change.
/// @param replace  whether existing files may be replaced
/// @throws opc::Exception
void writeKeyPair(const bedrock::crypto::RsaKeyPair& pair, const std::string& base, bool replace);

} // namespace opctool
