#pragma once

#include <opc/editing/Export.hpp>
#include <opc/inspection/Archive.hpp>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace opc::editing {

/// An item whose file has another name, because not every system could hold that of the item beside the others.
struct RenamedItem {
    std::string item;
    std::string file; ///< its path in the folder
    std::string reason;
};

/// Something in an archive that no file of the unpacked package shows.
struct HiddenContent {
    std::string place; ///< the item; empty for bytes that belong to none
    std::string what;
};

struct UnpackingOptions {
    bool keepsOriginal =
        true; ///< in `.opctool/original`, so that `pack` can give untouched items back as they were
    bool isForced = false; ///< whether the folder may have files; those with the names of items are replaced
    physical::ZipOptions limits;
};

struct Unpacked {
    std::uint64_t files = 0; ///< how many items have a file
    std::uint64_t bytes = 0; ///< in them
    std::vector<RenamedItem> renamed;
    std::vector<HiddenContent> hidden;
};

/// Writes each item of a package to a file in a folder: parts, `[Content_Types].xml`, relationships parts, items that are no
/// parts, all with the bytes that they have. From the folder, `pack` makes the package again. docs/formats.md describes the
/// folder `.opctool` in it.
///
/// No file is made outside the folder, and no link in it is followed, whatever the names in the package are. After a failure
/// everything that was made is removed. It needs no package that the model opens.
/// @param folder  must be new or empty, unless `isForced`
/// @return what was written, and what the files don't show
/// @throws opc::Exception  the folder can't be written, or it isn't empty; the archive has no directory; the content of an
///                         item can't be read or is beyond a limit, and the original isn't kept
OPC_EDITING_EXPORT Unpacked unpack(const inspection::Archive& archive, const std::filesystem::path& folder,
                                   const UnpackingOptions& options = {});

/// Says what `unpack` would write. It reads all that `unpack` reads, fails as it does, and writes nothing.
OPC_EDITING_EXPORT Unpacked tryUnpacking(const inspection::Archive& archive,
                                         const std::filesystem::path& folder,
                                         const UnpackingOptions& options = {});

} // namespace opc::editing
