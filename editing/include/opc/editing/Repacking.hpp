#pragma once

#include <opc/editing/Unpacking.hpp>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace opc::editing {

struct RepackingOptions {
    /// Limits, and whether the same contents give the same bytes: then items have a fixed time, and those behind the first
    /// two follow in the order of their names.
    physical::ZipOptions archive;
    int level = 6; ///< 1 is the fastest, 9 the smallest, 0 doesn't compress
    std::vector<std::string>
        stored;           ///< patterns of part names that aren't compressed; `*` stands for anything
    bool isTrial = false; ///< whether the target isn't replaced, though all else is done
    std::function<void(std::uint64_t)>
        progress; ///< called with the number of bytes that were read; may be empty
};

struct Repacked {
    std::uint64_t sizeBefore = 0; ///< of the archive
    std::uint64_t sizeAfter = 0;
    std::uint64_t items = 0;
    std::vector<HiddenContent> dropped; ///< was hidden in the archive and isn't in the new one
};

/// Writes a package anew: its contents compressed again, `[Content_Types].xml` and `_rels/.rels` in front, by which other
/// programs recognise the file, and without what stands beside the contents. What can't be read stays as it is compressed.
/// @param target  may be the package itself; it is replaced when all is written and checked, or stays as it was
/// @throws opc::Exception  the package can't be opened or read, or the target can't be written
OPC_EDITING_EXPORT Repacked repack(const std::filesystem::path& package, const std::filesystem::path& target,
                                   const RepackingOptions& options = {});

} // namespace opc::editing
