#pragma once

#include <string>
#include <string_view>

namespace opc::standard_signatures {

/// Whether every character is one of ASCII.
bool isASCII(std::u16string_view text);

/// The text in UTF-8. Nearly all of it is ASCII.
std::string narrow(std::u16string_view text);

/// Whether it is this text of ASCII.
bool isText(std::u16string_view text, std::string_view expected);

} // namespace opc::standard_signatures
