#pragma once

#include "signatures/document/DigitalSignatureSerializer.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "support/Texts.hpp"

#include <gtest/gtest.h>

/// @file
/// Signature documents, and helpers to read and write them.

namespace opc::test {

/// A document in the usual form: `Id` "Signature7", RSA with SHA-256, no key, one part, a time.
extern const std::string USUAL_SIGNATURE;

/// The written form of a signature that has every element, with a key value.
extern const std::string WRITTEN_SIGNATURE;

/// The document with this text in its `KeyInfo`.
std::string withKeyInfo(const std::string& document, const std::string& content);

/// The same content below an element of another namespace, where no schema applies, so that documents of any form can
/// be made from it. The root is an `Object`.
std::string unknownToSchema(const std::string& document);

/// A self-signed certificate in Base64, which OpenSSL's command line makes once for each kind of key.
/// @param key  in the form of `openssl req -newkey`: "rsa:2048"
std::string certificate(const std::string& key);

class SignatureDocument : public testing::Test {
protected:
    /// Reads into new data each time.
    model::DigitalSignatureData& read(const std::string& document);
    std::string write(const model::DigitalSignatureData& source);

    model::DigitalSignatureSerializer serializer;
    std::unique_ptr<model::DigitalSignatureData> data;
};

} // namespace opc::test
