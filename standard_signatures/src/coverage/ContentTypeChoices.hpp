#pragma once

#include "coverage/PackageMap.hpp"

#include <vector>

namespace opc::standard_signatures {

/// Some programs find a part by its content type alone: of several they take one by the order of the content types or of the
/// archive.
std::vector<OrderChoice> findContentTypeChoices(const PackageContents& contents);

} // namespace opc::standard_signatures
