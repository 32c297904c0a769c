#pragma once

#include <cstddef>
#include <string_view>

namespace opc::model {

/// The longest tag, comment or instruction that the parser accepts, in bytes.
constexpr std::size_t LONGEST_TAG = 4U << 20;

constexpr char TAG_IS_TOO_LONG[] = "XML content can not have tags or comments of more than 4 MiB";

/// Whether a document may have a longer tag than `LONGEST_TAG`. The text after a tag counts too.
bool hasLongTag(std::string_view document);

/// @throws InvalidPartContent  for a document that `hasLongTag`
void throwIfTagIsTooLong(std::string_view document);

/// The most bytes that a value can take in a tag, escaped and in UTF-8.
std::size_t sizeInTag(std::u16string_view value);

/// Whether a value is so short that a tag can hold three such values, escaped and in UTF-8.
bool fitsIntoTag(std::u16string_view value);

} // namespace opc::model
