#pragma once

#include "canonical/CanonicalXml.hpp"

#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/SignatureValue.hpp>

#include <string_view>

namespace opc::standard_signatures {

/// The algorithms that signatures may use. Everything else is refused before anything is computed.

struct DigestMethod {
    std::string_view uri;
    const char* name;
    bedrock::crypto::DigestAlgorithm algorithm;
    std::size_t size; ///< in bytes
    bool isWeak;
};

struct SignatureMethod {
    std::string_view uri;
    const char* name;
    bedrock::crypto::SignatureScheme scheme;
    bedrock::crypto::DigestAlgorithm algorithm;
    bool isWeak;
};

/// @throws Refusal  with `AlgorithmNotAccepted`
/// @{
const DigestMethod& findDigestMethod(std::string_view uri);
const SignatureMethod& findSignatureMethod(std::string_view uri);
/// @}

/// Those that are made of other ones; there is one for each scheme, and SHA-1, SHA-256, SHA-384 and SHA-512.
/// @throws std::logic_error  there is none
/// @{
const DigestMethod& digestMethodOf(bedrock::crypto::DigestAlgorithm algorithm);
const SignatureMethod& signatureMethodOf(bedrock::crypto::SignatureScheme scheme,
                                         bedrock::crypto::DigestAlgorithm algorithm);
/// @}

/// Whether a URI names a form of Canonical XML.
/// @param form  gets what the URI says
bool findCanonicalForm(std::string_view uri, CanonicalForm& form);

} // namespace opc::standard_signatures
