#pragma once

#include "subject/Targets.hpp"

#include <string>

namespace opc::inspection {

/// What is wrong with a URI of the scheme `pack`, as a sentence about "the Target": its authority is the URI of a package,
/// with commas for slashes and everything encoded that an authority can't have, and its path is the name of a part.
/// @return empty if nothing is, or if it is one of a program's own resources, which begin with `application:,,,` or
///         `siteoforigin:,,,`
std::string defectOfPackURI(const Reference& uri);

} // namespace opc::inspection
