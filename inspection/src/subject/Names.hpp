#pragma once

#include <opc/inspection/Export.hpp>

#include <string>
#include <string_view>

namespace opc::inspection {

/// The text in UTF-8; characters that aren't well-formed become U+FFFD.
OPC_INSPECTION_EXPORT std::string narrow(std::u16string_view text);

/// With A to Z as a to z, and nothing else changed.
OPC_INSPECTION_EXPORT std::string toLowerASCII(std::string_view text);

OPC_INSPECTION_EXPORT bool equalsCaseless(std::string_view left, std::string_view right);

/// The name with percent-encodings instead of the characters that a part name can't hold.
OPC_INSPECTION_EXPORT std::string encodedName(std::string_view name);

/// What names of parts are compared by, wherever they stand: two are the same part if they have the same key. Letter case
/// doesn't count [M1.12], and a character that a part name can't hold is as good as its percent-encoding.
OPC_INSPECTION_EXPORT std::string keyOfName(std::string_view name);

/// `keyOfName` of the content types stream.
inline constexpr std::string_view CONTENT_TYPES_KEY = "/%5bcontent_types%5d.xml";

/// Whether there is an ASCII character that a part name can't hold, such as a blank or `?`. Characters beyond ASCII stand for
/// their percent-encoding.
OPC_INSPECTION_EXPORT bool hasOddCharacter(std::string_view name);

/// Whether a part of this name is a relationships part, in whatever letter case it stands.
OPC_INSPECTION_EXPORT bool isRelationshipsName(std::string_view name);

/// The name of the part that a relationships part belongs to; "/" for the package.
/// @param name  `isRelationshipsName`
OPC_INSPECTION_EXPORT std::string sourceOfRelationships(std::string_view name);

} // namespace opc::inspection
