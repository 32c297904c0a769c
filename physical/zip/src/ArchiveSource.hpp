#pragma once

#include "BufferedTarget.hpp"
#include "ByteSource.hpp"

#include <zip.h>

#include <memory>

/// @file
/// Bytes of ours as libzip takes them.

namespace opc::physical::zip {

struct SourceFree {
    void operator()(zip_source_t* source) const noexcept { zip_source_free(source); }
};
using SourcePtr = std::unique_ptr<zip_source_t, SourceFree>;

/// Makes a source that reads `bytes`. If `target` is given, an archive on the source can be changed: it is
/// written to `target`, which must outlive it, while `bytes` stay as they are.
/// @param bytes  null for an archive that doesn't exist yet
SourcePtr makeSource(std::shared_ptr<ByteSource> bytes, ByteTarget* target = nullptr);

} // namespace opc::physical::zip
