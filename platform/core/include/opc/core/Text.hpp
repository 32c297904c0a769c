#pragma once

#include <opc/core/Export.hpp>

#include <cstdint>
#include <string>
#include <string_view>

/// @file
/// Text of the model is UTF-16; narrow text stands in messages and in the tool alone. No operation here
/// raises anything but `std::bad_alloc`: what isn't well-formed becomes U+FFFD where it must be decoded.

namespace opc {

/// Compares without regard to the case of ASCII letters: A to Z are taken as a to z, and then code units
/// count.
/// @return negative, zero or positive, as `left` stands before, with or behind `right`
OPC_CORE_EXPORT std::int32_t caselessCompare(const std::u16string& left,
                                             const std::u16string& right) noexcept;

/// `text` with A to Z turned into a to z, and nothing else changed.
OPC_CORE_EXPORT std::u16string toLowerASCIIString(const std::u16string& text);

/// `text` for a message in ASCII: each character beyond it becomes a question mark.
OPC_CORE_EXPORT std::string toASCIIString(const std::u16string& text);

/// `text` for a message in the encoding that people read here, UTF-8.
OPC_CORE_EXPORT std::string toUDEString(const std::u16string& text);

OPC_CORE_EXPORT std::u16string toString(const std::wstring& text);

/// @param text    UTF-8 if `isUTF8`, otherwise Latin-1
OPC_CORE_EXPORT std::u16string toString(const std::string& text, bool isUTF8);

/// A character beyond U+FFFF becomes one wide character.
OPC_CORE_EXPORT std::wstring toWideString(const std::u16string& text);

namespace detail {

/// @param replaceMalformed  whether a lone surrogate becomes U+FFFD; otherwise it is left out
OPC_CORE_EXPORT std::string toUTF8String(const std::u16string& text, bool replaceMalformed);

/// The text behind the last dot of the last segment of `path`, without the dot; empty if there is no dot.
OPC_CORE_EXPORT std::u16string getExtension(std::u16string_view path);

} // namespace detail

} // namespace opc
