#include "Commands.hpp"
#include "KeyFiles.hpp"
#include "Messages.hpp"

#include <opc/model/SignatureParams.hpp>

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace opctool {

namespace {

struct Arguments {
    std::string base;
    std::size_t bits = 2048;
    bool force = false;
};

void makeKey(const Arguments& arguments) {
    writeKeyPair(bedrock::crypto::generateRsaKeyPair(arguments.bits), arguments.base, arguments.force);
    if (opc::model::isWeak(opc::model::keySizeToSignatureMethod(arguments.bits)))
        tell({}, "warning: a key of " + std::to_string(arguments.bits) +
                     " bits is weak: sign and verify accept it only with --accept-weak");
}

void declare(CLI::App& command) {
    const auto arguments = std::make_shared<Arguments>();
    command.add_option("BASE", arguments->base, "The name of the files, without extension")
        ->required()
        ->type_name("");
    command.add_option("--bits", arguments->bits, "The size of the key")
        ->check(CLI::IsMember({1024, 2048, 4096}))
        ->type_name("N")
        ->capture_default_str();
    command.add_flag("--force", arguments->force, "Replace existing files");
    command.callback([arguments] { makeKey(*arguments); });
}

} // namespace

const Command KEYGEN{"keygen", "Make an RSA key: the PEM files BASE.key (private) and BASE.pub (public)",
                     declare, "", "opctool keygen signer"};

} // namespace opctool
