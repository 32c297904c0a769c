#pragma once

#include "signatures/document/DigitalSignatureSerializer.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "support/Texts.hpp"

#include <gtest/gtest.h>

/// @file
/// Signature documents to read, and what it takes to read and write them.

namespace opc::test {

/// A document of the usual form: `Id` "Signature7", RSA with SHA-256, no key, one part, a time.
extern const std::string USUAL_SIGNATURE;

/// What is written of a signature with every element of the form, with a key value.
extern const std::string WRITTEN_SIGNATURE;

/// The document with this in its `KeyInfo`.
std::string withKeyInfo(const std::string& document, const std::string& content);

/// The same content where no schema knows it, below an element of another namespace, so that documents of any
/// form can be made of it. The root is an `Object`.
std::string unknownToSchema(const std::string& document);

/// A self-signed certificate in Base64, made by OpenSSL's command line once for each kind of key.
/// @param key  as `openssl req -newkey` takes it: "rsa:2048"
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
