#pragma once

#include <opc/standard_signatures/Verification.hpp>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace opctool {

class FileRun;
class PackageFile;

/// What a command line requires of signatures in the standard's profile.
struct StandardRequirements {
    opc::standard_signatures::VerificationPolicy policy;
    bool requiresComplete = true;
    bool requiresTrusted = true;
    std::string signature; ///< the only one to verify, by its name or its part; empty for all
};

/// @param file  closed
/// @return without the signatures that the requirements leave out
opc::standard_signatures::PackageVerification verifyStandard(PackageFile& file,
                                                             const StandardRequirements& requirements);

/// Whether all signatures fulfil the requirements.
bool fulfils(const opc::standard_signatures::PackageVerification& verification,
             const StandardRequirements& requirements);

/// Prints the table of the three answers, and the reasons.
/// @param rows  of the same signatures, in JSON
void printVerification(FileRun& run, const opc::standard_signatures::PackageVerification& verification,
                       const nlohmann::ordered_json& rows);

} // namespace opctool
