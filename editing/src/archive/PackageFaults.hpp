#pragma once

#include <opc/inspection/Archive.hpp>

#include <filesystem>
#include <functional>
#include <set>
#include <string>

namespace opc::editing::archive {

/// The fingerprints of the errors that a package has by the standard.
std::set<std::string> findFaults(const inspection::Archive& archive, const physical::ZipOptions& limits);

/// Checks a package that was just written.
/// @param forgivesSignatures  whether a signature may not hold
/// @param known  gives the fingerprints of errors that it may have; called only if it has some
/// @throws opc::Exception  it can't be opened, or it has an error that isn't known
void requireSound(const std::filesystem::path& package, const physical::ZipOptions& limits,
                  bool forgivesSignatures, const std::function<std::set<std::string>()>& known);

} // namespace opc::editing::archive
