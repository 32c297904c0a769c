#pragma once

#include "ZipContent.hpp"

#include "shared/NamedList.hpp"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace opc::physical::zip {

/// Whether a part name, without the slash that it begins with, stays as it is when it is simplified and decoded as
/// `ExtractionNames` does.
bool isPlainPartName(std::string_view name);

/// Finds items that programs would extract over a part of the package, or read in its place: those that simplify
/// names, to keep within a folder or to suit a file system, arrive at one name for two items.
///
/// A name is simplified as far as any program is known to do it: backslashes are slashes; a drive, `.` and empty
/// segments, control characters, dots and blanks at the end of a segment, version numbers (`;1`) and what names
/// the content itself (`::$DATA`) are dropped; letter case doesn't count. Names of items that are no part are also
/// compared with percent-encoded characters decoded. Parts whose names stay as they are, nearly all, are found in
/// the list of parts alone.
class ExtractionNames {
public:
    /// @param parts  of the package; must outlive this
    explicit ExtractionNames(NamedList<ZipPart>& parts) : parts(parts) {}

    /// Takes a name of an item that is no part.
    /// @return what would be overwritten, as words for a message; nothing if nothing would
    std::optional<std::string> addIgnored(std::string_view itemName);

    /// Takes a name of an item that belongs to a part or, if `partName` is the name of its item, to the content
    /// types stream.
    /// @param partName  without the slash that it begins with
    /// @return as above
    std::optional<std::string> addOwned(std::string_view partName, std::string_view itemName);

private:
    std::optional<std::string> findPart(const std::string& key) const;

    NamedList<ZipPart>& parts;
    std::map<std::string, std::string> ignored; ///< simplified names, and the items' own
    std::map<std::string, std::string> owned; ///< simplified names that no part has, and what they belong to
    std::map<std::string, std::string> decoded; ///< likewise, with percent-encoded characters decoded
};

} // namespace opc::physical::zip
