#pragma once

#include "xml/PlainReader.hpp"

#include <functional>
#include <string>
#include <string_view>

/// @file
/// Recognises documents in the plain form that nearly all packages have, at a small part of the parser's
/// cost.
///
/// What is recognised must be valid, and mean the same to the parser: every form is left to it that isn't
/// plain, and every doubt and error.

namespace opc::model {

/// Called for each child; gives whether it is plain as well.
using PlainChildVisitor = std::function<bool(std::string_view name, const PlainAttributes& attributes)>;

/// Walks a plain document: with an XML declaration of UTF-8 or none, a root without a prefix that has no attributes
/// but declarations of its namespace and of prefixes, and in it empty children without prefixes, with white space and
/// comments in ASCII around them. There is no other text, and attributes of one element differ in name. Bytes beyond
/// ASCII stand in their values alone, and the visitor must see to it that they are UTF-8.
/// @param texts  takes the values that have references in them; all others lie in the document
/// @return whether the document is plain. If not, whatever was visited doesn't count
bool visitPlainDocument(std::string_view document, std::string_view root, std::string_view namespaceURI,
                        PlainTexts& texts, const PlainChildVisitor& visitChild);

/// Whether an attribute declares a prefix: validly, and to no effect if no name has it.
bool declaresPrefix(const PlainAttribute& attribute);

/// Whether a text is a valid xs:ID of ASCII characters.
bool isPlainID(std::string_view text);

/// Whether a text is a valid xs:dateTime of the usual form: a second of UTC, in a year from 1400 on.
bool isPlainTime(std::string_view text);

/// The same with a fraction or without, and without a time zone perhaps.
bool isPlainDateTime(std::string_view text);

/// The text of a plain value.
std::u16string widen(std::string_view value);

} // namespace opc::model
