#include "Commands.hpp"
#include "KeyFiles.hpp"

#include <opc/model/SignatureParams.hpp>

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <string>

namespace opctool {

void addKeyCommand(CLI::App& app) {
    struct Arguments {
        std::string base;
        std::size_t bits = 2048;
        bool force = false;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* command = app.add_subcommand(
        "keygen", "Make an RSA key: the PEM files BASE.key (private) and BASE.pub (public)");
    command->add_option("BASE", arguments->base, "The name of the files, without extension")->required();
    command->add_option("--bits", arguments->bits, "The size of the key")
        ->check(CLI::IsMember({1024, 2048, 4096}))
        ->capture_default_str();
    command->add_flag("--force", arguments->force, "Replace existing files");
    command->callback([arguments] {
        writeKeyPair(bedrock::crypto::generateRsaKeyPair(arguments->bits), arguments->base, arguments->force);
        if (opc::model::isWeak(opc::model::keySizeToSignatureMethod(arguments->bits)))
            std::cerr << "opctool: warning: a key of " << arguments->bits
                      << " bits is weak: sign and verify accept it only with --accept-weak\n";
    });
}

} // namespace opctool
