#include "Commands.hpp"
#include "KeyFiles.hpp"
#include "Messages.hpp"

#include <bedrock/certificates/SelfSignedCertificate.hpp>
#include <bedrock/crypto/RsaKeyPair.hpp>
#include <opc/model/SignatureParams.hpp>

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace opctool {

namespace {

using bedrock::certificates::X509Certificate;
using bedrock::crypto::SigningKey;

struct KeyArguments {
    std::string base;
    std::size_t bits = 2048;
    std::string curve;
    std::string owner;
    unsigned days = 365;
    bool force = false;
};

SigningKey makeKey(const KeyArguments& arguments) {
    if (!arguments.curve.empty())
        return bedrock::crypto::generateECKey(arguments.curve);
    const auto pair = bedrock::crypto::generateRsaKeyPair(arguments.bits);
    return {pair.getPrivateKey(), pair.getPublicKey()};
}

void makeFiles(const KeyArguments& arguments) {
    const SigningKey key = makeKey(arguments);
    const X509Certificate certificate =
        arguments.owner.empty()
            ? X509Certificate()
            : bedrock::certificates::makeSelfSignedCertificate(key, arguments.owner, arguments.days);
    writeKeyFiles(key, certificate, arguments.base, arguments.force);
    if (arguments.curve.empty() && opc::model::isWeak(opc::model::keySizeToSignatureMethod(arguments.bits)))
        tell({}, "warning: a key of " + std::to_string(arguments.bits) +
                     " bits is weak: sign and verify accept it only with --accept-weak");
}

void declareKey(CLI::App& command) {
    const auto arguments = std::make_shared<KeyArguments>();
    command.add_option("BASE", arguments->base, "The name of the files, without extension")
        ->required()
        ->type_name("");
    CLI::Option* const bits = command.add_option("--bits", arguments->bits, "The size of an RSA key")
                                  ->check(CLI::IsMember({1024, 2048, 4096}))
                                  ->type_name("N")
                                  ->capture_default_str();
    command.add_option("--ec", arguments->curve, "Make an EC key on this curve, for the profile standard")
        ->check(CLI::IsMember({"P-256", "P-384", "P-521"}))
        ->type_name("CURVE")
        ->excludes(bits);
    CLI::Option* const owner =
        command
            .add_option(
                "--cert", arguments->owner,
                "Make BASE.pem, too: a certificate with this name, signed by the key itself. Others trust it "
                "if they get it from you: verify --trust BASE.pem")
            ->check(CLI::Validator(
                [](const std::string& name) {
                    constexpr std::size_t MOST_CHARACTERS = 64; // RFC 5280 appendix A.1
                    return name.empty() || name.size() > MOST_CHARACTERS ? "A name has 1 to 64 bytes"
                                                                         : std::string();
                },
                ""))
            ->type_name("NAME");
    command.add_option("--days", arguments->days, "How long the certificate is valid")
        ->check(CLI::Range(1U, 36500U))
        ->type_name("N")
        ->needs(owner)
        ->capture_default_str();
    command.add_flag("--force", arguments->force, "Replace existing files");
    command.callback([arguments] { makeFiles(*arguments); });
}

} // namespace

const Command KEYGEN{
    "keygen",
    "Make a key, and a certificate for it: the PEM files BASE.key (private), BASE.pub (public) and BASE.pem",
    declareKey,
    "The key is RSA unless --ec names a curve. A certificate that its own key has signed is good for trying "
    "out, and among "
    "people who know each other; from an issuer of certificates you get one that others trust as well.",
    "opctool keygen signer\n"
    "opctool keygen signer --ec P-256 --cert 'Ada Binder'"};

} // namespace opctool
