#pragma once

#include "crypto/Methods.hpp"

#include <opc/standard_signatures/Signing.hpp>

#include <string>

namespace opc::standard_signatures {

/// The objects of a new signature, and its key.
/// @param time  as XML Schema writes it
/// @{

/// The object with the manifest and the time of signing.
std::string composePackageObject(const std::string& manifest, const std::string& time);

/// What office programs say about a signature that doesn't show in the document.
std::string composeOfficeObject(const std::string& comments);

/// The properties of XAdES-BES, which name the certificate.
std::string composeSignedProperties(const bedrock::certificates::X509Certificate& certificate,
                                    const DigestMethod& method, const std::string& time);

/// The certificates; without them the public key.
std::string composeKeyInfo(const Signer& signer);

/// @}

} // namespace opc::standard_signatures
