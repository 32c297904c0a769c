#pragma once

#include <string>

namespace opc::physical::zip {

bool isUTF8(const std::string& text);

/// @param text  in code page 437, the encoding of ZIP names that don't say another one
/// @return it in UTF-8
std::string fromCodePage437(const std::string& text);

} // namespace opc::physical::zip
