#pragma once

#include <string>
#include <string_view>

namespace opc::editing::mending {

/// The name of an item with single slashes alone, and with those characters percent-encoded that a part name can't have, and
/// no others.
std::string plainName(std::string_view name);

/// What a piece is a piece of, as its item is called.
inline std::string_view prefixOfPiece(std::string_view name) {
    return name.substr(0, name.find_last_of("/\\"));
}

} // namespace opc::editing::mending
