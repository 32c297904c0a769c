#pragma once

#include "ZipContent.hpp"

#include "shared/NamedList.hpp"

#include <opc/physical/ZipExport.hpp>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace opc::physical::zip {

/// Whether a part name, without its first slash, doesn't change when it is simplified and decoded as
/// `ExtractionNames` does.
bool isPlainPartName(std::string_view name);

/// Whether some programs give a part another name when they extract it, before or after they decode it. Letter case
/// doesn't count.
OPC_ZIP_EXPORT bool changesWhenExtracted(std::string_view itemName);

/// A name of an item as programs may simplify it when they extract the item, in lower case: see `ExtractionNames`.
/// @param isPart  otherwise percent-encoded characters are decoded, too
OPC_ZIP_EXPORT std::string extractedName(std::string_view itemName, bool isPart);

/// Finds items that programs would extract over a part of the package, or read in its place. Programs that simplify
/// names, for safety or for a file system, arrive at one name for two items.
///
/// Names are simplified as much as any program is known to do it. Backslashes become slashes. A drive, `.` and empty
/// segments, control characters, dots and blanks at the end of a segment, version numbers (`;1`) and stream names
/// (`::$DATA`) are dropped. Letter case is ignored. The names of items that aren't parts are also compared with
/// percent-encoded characters decoded. Nearly all parts have names that don't change: those are looked up in the list
/// of parts.
class ExtractionNames {
public:
    /// @param parts  the parts of the package; must outlive this object
    explicit ExtractionNames(NamedList<ZipPart>& parts) : parts(parts) {}

    /// Adds the name of an item that isn't a part.
    /// @return what it would overwrite, as words for a message; nothing if it overwrites nothing
    std::optional<std::string> addIgnored(std::string_view itemName);

    /// Adds a name of an item that belongs to a part or, if `partName` is the name of its item, to the content types
    /// stream.
    /// @param partName  without its first slash
    /// @return as above
    std::optional<std::string> addOwned(std::string_view partName, std::string_view itemName);

private:
    std::optional<std::string> findPart(const std::string& key) const;

    NamedList<ZipPart>& parts;
    std::map<std::string, std::string> ignored; ///< simplified names, with the names of the items
    std::map<std::string, std::string> owned; ///< simplified names that no part has, with what they belong to
    std::map<std::string, std::string> decoded; ///< the same with percent-encoded characters decoded
};

} // namespace opc::physical::zip
