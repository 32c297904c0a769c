#pragma once

#include <string>
#include <string_view>

namespace opc::physical::zip {

bool isASCII(std::string_view text);
bool isUTF8(std::string_view text);

/// @param text  in code page 437, the encoding of ZIP names that don't say another one
/// @return it in UTF-8
std::string fromCodePage437(std::string_view text);

/// @param text  in Latin-1, as some programs take such names
/// @return it in UTF-8
std::string fromLatin1(std::string_view text);

} // namespace opc::physical::zip
