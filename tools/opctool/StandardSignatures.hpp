#pragma once

#include <opc/standard_signatures/Verification.hpp>

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

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

/// A row of JSON, with the members that rows of the other profile have too.
nlohmann::ordered_json describeSignature(const opc::standard_signatures::VerifiedSignature& signature);

/// Why the signature isn't a yes, in lines for people.
std::vector<std::string> reasonsOf(const opc::standard_signatures::VerifiedSignature& signature);

/// Prints the table of the three answers, and the reasons.
void printVerification(FileRun& run, const opc::standard_signatures::PackageVerification& verification);

} // namespace opctool
