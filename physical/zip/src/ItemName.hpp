#pragma once

#include <opc/physical/ZipExport.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace opc::physical::zip {

/// The item name of the content types stream when it is new.
extern const char* const CONTENT_TYPES_ITEM;

/// What the name of a ZIP item says that the item is.
struct ItemName {
    /// A refused name leads out of the folder that an archive is unpacked to.
    enum class Kind { Part, ContentTypes, Ignored, Refused };

    /// An interleaved part is cut into items [0].piece, [1].piece and so on, the last one [n].last.piece.
    struct Piece {
        std::uint32_t number;
        bool last;
    };

    Kind kind = Kind::Ignored;
    /// Of a part, without the slash that it begins with. `_rels` and `.rels` have standard letter case.
    std::string partName;
    std::optional<Piece> piece; ///< of a part or the content types stream: it is a piece of that
    std::string reason;         ///< why it is ignored or refused
};

/// Maps an item name, in UTF-8, to what it stands for (ECMA-376 Part 2, mapping of ZIP item names to part
/// names, widened to names that real programs write: see `ZipPackage`).
OPC_ZIP_EXPORT ItemName readItemName(std::string_view item);

/// Whether `readItemName` and `isPlainPartName` leave nothing to do: the item is a part that has the item's name as it
/// stands. Nearly all items are, and one look at the name tells so.
OPC_ZIP_EXPORT bool isUsualItemName(std::string_view item);

/// @return an item name, in UTF-8, with everything percent-encoded that a part name can't hold
std::string encodeItemName(std::string_view item);

/// @return what breaks the rules for part names in `name`, or keeps an archive from holding a part of that name,
///     as words for a message; null if nothing does
const char* partNameDefect(std::string_view name);

} // namespace opc::physical::zip
