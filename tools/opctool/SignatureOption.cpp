#include "SignatureOption.hpp"

#include "FileRun.hpp"

#include <CLI/CLI.hpp>

namespace opctool {

using opc::editing::BreaksSignatures;

void addSignatureOption(CLI::App& command, RunOptions& options) {
    command.add_flag("--break-signatures", options.breakSignatures,
                     "Make the change also if signatures don't hold after it");
}

void refuseToBreak(const std::vector<std::string>& signatures) {
    try {
        opc::editing::throwIfBroken(signatures);
    } catch (BreaksSignatures& e) {
        nameSignatureOption(e);
        throw;
    }
}

void nameSignatureOption(BreaksSignatures& failure) {
    failure.addDetails("--break-signatures makes the change all the same");
}

} // namespace opctool
