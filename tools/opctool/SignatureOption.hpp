#pragma once

#include <opc/editing/Signatures.hpp>

#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace opctool {

struct RunOptions;

/// Declares --break-signatures.
void addSignatureOption(CLI::App& command, RunOptions& options);

/// Refuses a change that breaks these signatures.
/// @throws BreaksSignatures  there are some; it names the option that allows that
void refuseToBreak(const std::vector<std::string>& signatures);

/// Tells in its details which option makes the change all the same.
void nameSignatureOption(opc::editing::BreaksSignatures& failure);

} // namespace opctool
