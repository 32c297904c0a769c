#pragma once

#include "coverage/PackageMap.hpp"

#include <vector>

namespace opc::standard_signatures {

/// Some programs find parts of office documents by their content types: of several they take one by the order of the content types
/// or of the archive. Some know only those of entries for single parts (Override), and don't look whether the part is there.
std::vector<UnsignedChoice> findContentTypeChoices(const PackageContents& contents);

} // namespace opc::standard_signatures
