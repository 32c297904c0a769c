#include "SigningMaterial.hpp"

#include "KeyFiles.hpp"
#include "Password.hpp"
#include "SourceDate.hpp"

#include <opc/core/Exception.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iterator>

namespace opctool {

namespace {

using opc::model::DigestMethod;
using opc::model::SignatureParams;

struct Digest {
    const char* name;
    DigestMethod method;
};

constexpr Digest DIGESTS[] = {
    {"md5", DigestMethod::MD5},       {"sha1", DigestMethod::SHA1},     {"sha224", DigestMethod::SHA224},
    {"sha256", DigestMethod::SHA256}, {"sha384", DigestMethod::SHA384}, {"sha512", DigestMethod::SHA512},
};

std::vector<std::string> digestNames() {
    std::vector<std::string> names;
    std::transform(std::begin(DIGESTS), std::end(DIGESTS), std::back_inserter(names),
                   [](const Digest& digest) { return digest.name; });
    return names;
}

/// @throws opc::Exception  they are weak, and that isn't accepted
SignatureParams makeParams(const SigningArguments& arguments, std::size_t keySize) {
    const auto* const digest = std::find_if(std::begin(DIGESTS), std::end(DIGESTS), [&](const Digest& entry) {
        return entry.name == (arguments.digest.empty() ? "sha512" : arguments.digest);
    });
    SignatureParams params(digest->method, opc::model::keySizeToSignatureMethod(keySize));
    const auto refuse = [](const std::string& what) {
        throw opc::Exception(what + " is too weak; use --accept-weak to sign with it");
    };
    if (!arguments.trust.acceptWeak && isWeak(params.getSignatureMethod()))
        refuse("An RSA key of " + std::to_string(keySize) + " bits");
    if (!arguments.trust.acceptWeak && isWeak(params.getDigestMethod()))
        refuse("The digest " + arguments.digest);
    params.setSigningTime(presentTime());
    return params;
}

} // namespace

std::string digestName(DigestMethod method) {
    const auto* const digest = std::find_if(std::begin(DIGESTS), std::end(DIGESTS),
                                            [&](const Digest& entry) { return entry.method == method; });
    return digest->name;
}

void addSigningOptions(CLI::App& command, SigningArguments& arguments) {
    CLI::App* signer = command.add_option_group("Signer", "Who signs");
    CLI::Option* key =
        signer
            ->add_option(
                "--key", arguments.key,
                "A private key of RSA or, in the profile standard, EC; PEM or DER, without a password")
            ->check(CLI::ExistingFile);
    CLI::Option* bundle =
        signer->add_option("--p12", arguments.bundle, "A PKCS#12 bundle of a key and its certificates")
            ->check(CLI::ExistingFile);
    signer->require_option(1);
    CLI::Option* certificate =
        command
            .add_option("--cert", arguments.certificate,
                        "The certificate of --key, PEM or DER; further certificates in "
                        "the file are added to the chain")
            ->check(CLI::ExistingFile)
            ->needs(key);
    CLI::Option* publicKey = command
                                 .add_option("--public", arguments.publicKey,
                                             "The public half of --key, for the signature, in the profile "
                                             "opcmodel; without it and without "
                                             "--cert the signature says nothing about the signer")
                                 ->check(CLI::ExistingFile)
                                 ->needs(key)
                                 ->excludes(certificate);
    command.add_option("--chain", arguments.chain, "Further certificates for the signature, PEM or DER")
        ->check(CLI::ExistingFile)
        ->needs(certificate);
    command
        .add_option("--password-file", arguments.passwordFile,
                    "A file with the password of the bundle in its first line; without it, opctool asks")
        ->check(CLI::ExistingFile)
        ->needs(bundle);
    command
        .add_option(
            "--digest", arguments.digest,
            "The digest algorithm. The default is sha256, and sha512 in the profile opcmodel, which alone "
            "has md5, sha1 and sha224")
        ->check(CLI::IsMember(digestNames()));
    for (CLI::Option* option : addTrustOptions(command, arguments.trust))
        option->excludes(publicKey)->description(option->get_description() + "; in the profile opcmodel");
}

SigningMaterial::SigningMaterial(const SigningArguments& arguments)
    : options(makeValidationOptions(arguments.trust)), trustStore(makeTrustStore(arguments.trust)) {
    if (arguments.bundle.empty())
        readKeys(arguments);
    else
        readBundle(arguments);
    readChain(arguments);
}

void SigningMaterial::readBundle(const SigningArguments& arguments) {
    const Password password(arguments.passwordFile);
    bundle.emplace(readFile(arguments.bundle), password.get());
    const auto& signer = bundle->getCertificate();
    if (!signer.empty()) // otherwise signing reports what is missing
        params = makeParams(arguments, signer.getKeySize());
}

void SigningMaterial::readKeys(const SigningArguments& arguments) {
    const auto privateKey = readPrivateKey(arguments.key);
    params = makeParams(arguments, privateKey->getKeySize());
    std::vector<unsigned char> publicBytes;
    if (!arguments.publicKey.empty())
        publicBytes = readPublicKey(arguments.publicKey)->getAsByteArray();
    keys = bedrock::crypto::RsaKeyPair(privateKey->getAsByteArray(), std::move(publicBytes));
}

void SigningMaterial::readChain(const SigningArguments& arguments) {
    std::vector<bedrock::certificates::X509Certificate> certificates;
    if (!arguments.certificate.empty()) {
        certificates = readCertificates(arguments.certificate);
        certificate = certificates.front();
        certificates.erase(certificates.begin());
    }
    if (!arguments.chain.empty())
        for (auto& further : readCertificates(arguments.chain))
            certificates.push_back(std::move(further));
    for (auto& further : certificates)
        chain.addCertificate(std::move(further));
}

} // namespace opctool
