#pragma once

#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/crypto/RSAPrivateKey.hpp>
#include <bedrock/crypto/RSAPublicKey.hpp>
#include <bedrock/crypto/SigningKey.hpp>

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

/// The private key in a file: RSA of any size, or EC, in PEM or DER and without a password.
/// @throws opc::Exception  there is none
bedrock::crypto::SigningKey readSigningKey(const std::string& path);

/// The public key in a file, as SubjectPublicKeyInfo: RSA of any size, or EC, in PEM or DER.
/// @throws opc::Exception  there is none
std::vector<unsigned char> readAnyPublicKey(const std::string& path);

/// Writes BASE.key, which only its owner can read, BASE.pub and, if there is a certificate, BASE.pem, all in PEM. If one of
/// them can't be written, nothing of them stays, and the files that they would replace don't change.
/// @param replace  whether existing files may be replaced
/// @throws opc::Exception
void writeKeyFiles(const bedrock::crypto::SigningKey& key,
                   const bedrock::certificates::X509Certificate& certificate, const std::string& base,
                   bool replace);

} // namespace opctool
