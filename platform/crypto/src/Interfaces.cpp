// Defines the destructors of the abstract classes and exceptions, so that the program has one type information of
// each, also across shared libraries.

#include <bedrock/crypto/interfaces/ICryptoProvider.hpp>
#include <bedrock/crypto/utils/CryptoNotLoaded.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

namespace bedrock::crypto {

CryptoPRNG::~CryptoPRNG() = default;
DigestEngine::~DigestEngine() = default;
RSAPrivateKey::~RSAPrivateKey() = default;
RSAPublicKey::~RSAPublicKey() = default;
RSASigner::~RSASigner() = default;
RSAVerifier::~RSAVerifier() = default;

namespace interfaces {

ICryptoProvider::~ICryptoProvider() = default;

} // namespace interfaces

namespace utils {

Exception::~Exception() = default;
InvalidKey::~InvalidKey() = default;
UnusableKey::~UnusableKey() = default;
CouldNotComputeDigest::~CouldNotComputeDigest() = default;
CryptoNotLoaded::~CryptoNotLoaded() = default;

} // namespace utils

} // namespace bedrock::crypto
