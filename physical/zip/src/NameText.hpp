#pragma once

#include <opc/physical/ZipExport.hpp>

#include <string>
#include <string_view>

namespace opc::physical::zip {

OPC_ZIP_EXPORT bool isASCII(std::string_view text);
OPC_ZIP_EXPORT bool isUTF8(std::string_view text);

/// @param text  in code page 437, the default encoding of ZIP names
/// @return the text in UTF-8
OPC_ZIP_EXPORT std::string fromCodePage437(std::string_view text);

/// @param text  in Latin-1: some programs read such names so
/// @return the text in UTF-8
OPC_ZIP_EXPORT std::string fromLatin1(std::string_view text);

} // namespace opc::physical::zip
