#pragma once

#include <opc/editing/ArchiveWriting.hpp>
#include <opc/editing/Unpacking.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace opc::editing {

struct RepackingOptions {
    /// Limits, and whether the same contents give the same bytes: then items have a fixed time, and those behind the first
    /// two follow in the order of their names.
    physical::ZipOptions archive;
    int level = 6; ///< 1 is the fastest, 9 the smallest, 0 doesn't compress
    /// Patterns of names that aren't compressed: `*` stands for anything within a segment, `**` for anything. One that
    /// doesn't begin with a slash matches the end of names, from any slash.
    std::vector<std::string> stored;
};

struct Repacked {
    inspection::Archive archive; ///< checked: `writeTo` and `writeBack` write it
    std::uint64_t items = 0;
    std::vector<HiddenContent> dropped; ///< was hidden in the archive and isn't in the new one
};

/// Makes a package anew: its contents compressed again, `[Content_Types].xml` and `_rels/.rels` in front, by which other
/// programs recognise the file, and without what stands beside the contents. What can't be read stays as it is compressed.
///
/// The new archive lies in memory while it is small, otherwise in a temporary file without a name.
/// @throws opc::Exception  the package can't be opened or read, or the temporary file can't be written
OPC_EDITING_EXPORT Repacked repack(const inspection::Archive& package, const RepackingOptions& options = {});

} // namespace opc::editing
