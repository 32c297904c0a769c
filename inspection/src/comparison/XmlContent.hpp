#pragma once

#include <opc/inspection/Archive.hpp>

#include <vector>

namespace opc::inspection {

/// Whether a content begins as an XML document does, so that it is worth to parse it.
/// @throws opc::Exception  it can't be read
bool beginsLikeXml(const Archive& archive, const std::vector<const ArchiveItem*>& items);

} // namespace opc::inspection
