#pragma once

#include "coverage/PackageMap.hpp"

#include <vector>

namespace opc::standard_signatures {

/// Programs that read spreadsheets find parts by their content types: of several they take one by the order of the content types or
/// of the archive. Some know only those of entries for single parts (Override), and look neither whether the part is there.
std::vector<UnsignedChoice> findContentTypeChoices(const PackageContents& contents);

} // namespace opc::standard_signatures
