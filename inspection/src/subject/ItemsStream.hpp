#pragma once

#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Export.hpp>

#include <memory>
#include <vector>

namespace opc::inspection {

/// The content of an item, or of pieces one after the other, ready to read.
/// @param archive  must outlive the stream
/// @param items    at least one
OPC_INSPECTION_EXPORT std::unique_ptr<InputStream> openItems(const Archive& archive,
                                                             const std::vector<const ArchiveItem*>& items);

} // namespace opc::inspection
