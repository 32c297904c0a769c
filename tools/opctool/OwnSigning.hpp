#pragma once

#include "SignArguments.hpp"

namespace opctool {

class FileRun;
class SignedPackage;

/// Signing in the library's own profile. Both save the package, and print the name of the signature.
/// @throws CLI::ValidationError  an option is one of the other profile
/// @{
void signInOwnProfile(FileRun& run, SignedPackage& package, const SignArguments& arguments);
void countersign(FileRun& run, SignedPackage& package, const SignArguments& arguments);
/// @}

} // namespace opctool
