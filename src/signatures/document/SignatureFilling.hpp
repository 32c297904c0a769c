#pragma once

#include <bedrock/certificates/X509CertificateChain.hpp>
#include <opc/model/SignatureParams.hpp>

#include <string>

/// @file
/// What scanner and parser both make of the texts in a signature document.

namespace opc::model {

struct RSAKeyValue;
struct SignatureRecord;

/// The signature's identifier in the `Id` of the root.
std::u16string readSignatureId(const std::u16string& id);

/// Sets the size of the key, too.
void setKeyValue(RSAKeyValue key, SignatureRecord& data);

/// Adds a certificate to `chain`; the first one is the signer's, and goes to `data`.
/// @param text  in Base64
void addCertificate(const std::u16string& text, SignatureRecord& data,
                    bedrock::certificates::X509CertificateChain& chain);

/// Sets the parameters, when all else is known.
void settleParameters(SignatureRecord& data);

/// @throws opc::Exception  the parameters say no size of key
void throwIfNoKeySize(SignatureMethod method);

} // namespace opc::model
