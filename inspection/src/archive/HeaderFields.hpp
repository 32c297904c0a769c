#pragma once

#include "zip/src/Records.hpp"

#include <opc/inspection/Archive.hpp>

namespace opc::inspection {

/// Reads what both headers of an item have in the same order: from the version that reading needs to the checksum.
/// @param fields  where the version stands
inline void readFields(const unsigned char* fields, ItemHeader& header) {
    using physical::zip::read16;
    header.versionNeeded = read16(fields);
    header.flags = read16(fields + 2);
    header.method = read16(fields + 4);
    header.time = read16(fields + 6);
    header.date = read16(fields + 8);
    header.checksum = physical::zip::read32(fields + 10);
}

} // namespace opc::inspection
