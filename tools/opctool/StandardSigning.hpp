#pragma once

#include "SignArguments.hpp"

namespace opctool {

class FileRun;
class SignedPackage;

/// Signs in the standard's profile, saves the package, and prints the name of the signature.
/// @throws CLI::ValidationError  an option is one of the other profile
void signInStandardProfile(FileRun& run, SignedPackage& package, const SignArguments& arguments);

} // namespace opctool
