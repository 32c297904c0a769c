#pragma once

#include <opc/physical/ZipExport.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace opc::physical::zip {

/// The item name of a new content types stream.
extern const char* const CONTENT_TYPES_ITEM;

/// The relationships of the package.
extern const char* const PACKAGE_RELATIONSHIPS_ITEM;

/// What an item is by its name.
struct ItemName {
    /// A refused name leads out of the folder into which an archive is unpacked.
    enum class Kind { Part, ContentTypes, Ignored, Refused };

    /// An interleaved part consists of the items [0].piece, [1].piece and so on; the last one is [n].last.piece.
    struct Piece {
        std::uint32_t number;
        bool last;
    };

    Kind kind = Kind::Ignored;
    /// the name of a part without its first slash; `_rels` and `.rels` have standard letter case
    std::string partName;
    std::optional<Piece> piece; ///< if the item is a piece of a part or of the content types stream
    std::string reason;         ///< why it is ignored or refused
};

/// Decides what an item is by its name, in UTF-8 (ECMA-376 Part 2, mapping of ZIP item names to part names). Also
/// accepts names that real programs write: see `ZipPackage`.
OPC_ZIP_EXPORT ItemName readItemName(std::string_view item);

/// Whether one look at the name tells that `readItemName` and `isPlainPartName` aren't needed: the item is a part
/// with exactly this name. Nearly all items are.
OPC_ZIP_EXPORT bool isUsualItemName(std::string_view item);

/// @param item  the name of an item that is read as a part or as the content types stream
/// @return why other programs may not find it by this name, as words for a message; null if there is no reason
const char* nameDefectForOthers(std::string_view item);

/// Whether an item has the name of a folder, in any way of writing slashes.
OPC_ZIP_EXPORT bool isFolderName(std::string_view item);

/// @return an item name, in UTF-8, with all characters percent-encoded that a part name can't have
std::string encodeItemName(std::string_view item);

/// @return why `name` isn't a part name, or why an archive can't hold such a part, as words for a message; null if
///         there is no reason
const char* partNameDefect(std::string_view name);

} // namespace opc::physical::zip
