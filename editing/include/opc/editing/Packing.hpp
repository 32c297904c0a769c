#pragma once

#include <opc/editing/Unpacking.hpp>

#include <map>
#include <string>
#include <vector>

namespace opc::editing {

struct PackingOptions {
    physical::ZipOptions archive; ///< limits, and whether the same tree gives the same bytes
    /// Content types of parts that are new, by part name ("/word/a.png") or by extension ("png"), in lower case. One that is
    /// found here goes into the content types of the package; the file stays as it is.
    std::map<std::string, std::string> contentTypes;
    bool breaksSignatures = false; ///< whether a change to what a signature signs is made all the same
    bool isTrial = false;          ///< whether the target isn't replaced, though all else is done
    std::function<void(std::uint64_t)>
        progress; ///< called with the number of bytes that were read; may be empty
};

struct Packed {
    bool isOriginal = false; ///< nothing has changed: the target has the bytes of the original
    std::uint64_t items = 0; ///< of the new archive
    std::vector<std::string> added, replaced, removed; ///< items; added are all without an original
    std::vector<HiddenContent> hidden;         ///< came back from the original, though no file shows it
    std::vector<HiddenContent> dropped;        ///< was hidden in the original and isn't in the target
    std::vector<std::string> brokenSignatures; ///< the parts of signatures that hold no longer
};

/// Makes a package of a folder that `unpack` has made, or of any folder with the files of a package.
///
/// If the folder has the original, each item whose file has still the same bytes is copied as it was compressed; if nothing
/// has changed at all, the target gets the very bytes of the original. Without it, the items follow `[Content_Types].xml`
/// and `_rels/.rels` in the order of their names. The target is replaced when all is written and checked, or stays as it was.
///
/// The folder may come from strangers: no link is followed, and nothing outside is read.
/// @param target  the package's file
/// @throws opc::Exception  the folder can't be read, or has something else than files and folders; no content type covers a
///                         new part; the result can't be opened, or has an error by the standard that the original hadn't; a
///                         signature would break; the target can't be written
OPC_EDITING_EXPORT Packed pack(const std::filesystem::path& folder, const std::filesystem::path& target,
                               const PackingOptions& options = {});

} // namespace opc::editing
