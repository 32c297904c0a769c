#pragma once

#include <opc/core/Export.hpp>

#include <cstdint>
#include <string>
#include <string_view>

/// @file
/// The model uses UTF-16; only messages and the tool use narrow text. The functions here throw nothing but
/// `std::bad_alloc`: when they decode text that isn't well-formed, the wrong characters become U+FFFD.

namespace opc {

/// Compares two texts code unit by code unit, ignoring the case of ASCII letters: A to Z count as a to z.
/// @return negative, zero or positive if `left` sorts before, equal to or after `right`
OPC_CORE_EXPORT std::int32_t caselessCompare(const std::u16string& left,
                                             const std::u16string& right) noexcept;

/// Compares two texts code unit by code unit, as `std::u16string_view::compare` does, but quickly passes over a common
/// beginning. URIs often have a long one.
OPC_CORE_EXPORT std::int32_t compareTexts(std::u16string_view left, std::u16string_view right) noexcept;

/// Whether two texts are the same. Compares their bytes, and so is faster than the operator.
OPC_CORE_EXPORT bool areSameTexts(std::u16string_view left, std::u16string_view right) noexcept;

/// Converts A to Z into a to z, and changes nothing else.
OPC_CORE_EXPORT std::u16string toLowerASCIIString(const std::u16string& text);

/// Converts `text` to ASCII for a message: every other character becomes a question mark.
OPC_CORE_EXPORT std::string toASCIIString(const std::u16string& text);

/// Converts `text` to the encoding of text for people, which is UTF-8.
OPC_CORE_EXPORT std::string toUDEString(const std::u16string& text);

OPC_CORE_EXPORT std::u16string toString(const std::wstring& text);

/// @param text    UTF-8 if `isUTF8`, otherwise Latin-1
OPC_CORE_EXPORT std::u16string toString(const std::string& text, bool isUTF8);

/// Each character becomes one wide character, also those beyond U+FFFF; where `wchar_t` has two bytes, these become two.
OPC_CORE_EXPORT std::wstring toWideString(const std::u16string& text);

namespace detail {

/// @param replaceMalformed  true to replace lone surrogates by U+FFFD, false to drop them
OPC_CORE_EXPORT std::string toUTF8String(const std::u16string& text, bool replaceMalformed);

/// The text after the last dot of the last segment of `path`, without the dot; empty if there is no dot.
OPC_CORE_EXPORT std::u16string getExtension(std::u16string_view path);

} // namespace detail

} // namespace opc
