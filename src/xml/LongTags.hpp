#pragma once

#include <cstddef>
#include <string_view>

namespace opc::model {

/// Of a tag, a comment or an instruction, in bytes: the parser refuses a longer one.
constexpr std::size_t LONGEST_TAG = 4U << 20;

constexpr char TAG_IS_TOO_LONG[] = "XML content can not have tags or comments of more than 4 MiB";

/// Whether a document may have a longer tag than `LONGEST_TAG`: text behind a tag counts with it.
bool hasLongTag(std::string_view document);

/// @throws InvalidPartContent  for a document that `hasLongTag`
void throwIfTagIsTooLong(std::string_view document);

/// How many bytes a value takes in a tag at most, escaped and in UTF-8.
std::size_t sizeInTag(std::u16string_view value);

/// Whether a value is short enough for a tag that holds three of its length, escaped and in UTF-8.
bool fitsIntoTag(std::u16string_view value);

} // namespace opc::model
