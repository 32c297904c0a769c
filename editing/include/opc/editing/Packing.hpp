#pragma once

#include <opc/editing/ArchiveWriting.hpp>
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
};

struct Packed {
    inspection::Archive archive;                       ///< the package, checked: `writeTo` writes it
    bool isOriginal;                                   ///< nothing has changed: it is the original itself
    std::uint64_t items;                               ///< of the new archive
    std::vector<std::string> added, replaced, removed; ///< items; added are all without an original
    std::vector<HiddenContent> hidden;         ///< came back from the original, though no file shows it
    std::vector<HiddenContent> dropped;        ///< was hidden in the original and isn't in the package
    std::vector<std::string> brokenSignatures; ///< the parts of signatures that hold no longer
};

/// Makes a package of a folder that `unpack` has made, or of any folder with the files of a package.
///
/// If the folder has the original, each item whose file has still the same bytes is copied as it was compressed; if nothing
/// has changed at all, the package is the original itself. Without it, the items follow `[Content_Types].xml` and
/// `_rels/.rels` in the order of their names.
///
/// The folder may come from strangers: no link is followed, and nothing outside is read. The package lies in memory while it
/// is small, otherwise in a temporary file without a name.
/// @throws opc::Exception    the folder can't be read, or has something else than files and folders; no content type covers a
///                           new part; the package can't be opened; the temporary file can't be written
/// @throws InvalidResult     the package has an error by the standard that the original hadn't
/// @throws BreaksSignatures  a signature would break
OPC_EDITING_EXPORT Packed pack(const std::filesystem::path& folder, const PackingOptions& options = {});

} // namespace opc::editing
