#pragma once

#include "Trust.hpp"

#include <bedrock/certificates/PKCS12Certificate.hpp>
#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/certificates/X509CertificateChain.hpp>
#include <bedrock/crypto/RsaKeyPair.hpp>
#include <opc/model/SignatureParams.hpp>

#include <optional>
#include <string>

namespace opctool {

/// The name of a digest on the command line and in output, such as "sha512".
std::string digestName(opc::model::DigestMethod method);

/// What the command line says about who signs, and how. Paths are empty if they aren't given.
struct SigningArguments {
    std::string key;
    std::string publicKey;
    std::string certificate;
    std::string chain;
    std::string bundle;
    std::string passwordFile;
    std::string digest; ///< empty for the profile's default
    Trust trust;
};

void addSigningOptions(CLI::App& command, SigningArguments& arguments);

/// The material for signing in the library's own profile: a key, a key and its certificate, or a bundle of both.
class SigningMaterial {
public:
    /// Reads the files, and asks for the bundle's password if no file has it.
    explicit SigningMaterial(const SigningArguments& arguments);

    /// Calls `sign` with the arguments that the operations of `DigitalSignatureManager` take for such material.
    template <typename Sign>
    auto apply(Sign sign) const {
        if (bundle)
            return sign(*bundle, options, params, trustStore);
        if (!certificate.empty())
            return sign(keys.getPrivateKey(), certificate, chain, options, params, trustStore);
        if (!keys.getPublicKey().empty())
            return sign(keys.getPrivateKey(), keys.getPublicKey(), params);
        return sign(keys.getPrivateKey(), params);
    }

private:
    void readBundle(const SigningArguments& arguments);
    void readKeys(const SigningArguments& arguments);
    void readChain(const SigningArguments& arguments);

    bedrock::crypto::RsaKeyPair keys{{}, {}};
    bedrock::certificates::X509Certificate certificate;
    bedrock::certificates::X509CertificateChain chain;
    std::optional<bedrock::certificates::PKCS12Certificate> bundle;
    bedrock::certificates::CertificateValidationOptions options;
    bedrock::certificates::TrustStore trustStore;
    opc::model::SignatureParams params;
};

} // namespace opctool
