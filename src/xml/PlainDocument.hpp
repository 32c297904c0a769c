#pragma once

#include "xml/PlainReader.hpp"

#include <functional>
#include <string>
#include <string_view>

/// @file
/// Recognises documents in the plain form, which nearly all packages have, in a fraction of the parser's time.
///
/// Whatever is recognised is valid, and means the same to the parser. Every other form, every doubt and every error
/// is left to the parser.

namespace opc::model {

/// Called for each child; returns whether it is plain too.
using PlainChildVisitor = std::function<bool(std::string_view name, const PlainAttributes& attributes)>;

/// Walks through a plain document. It has an XML declaration of UTF-8 or none. Its root has no prefix, and only
/// declares its namespace and prefixes. The children of the root are empty and have no prefixes. White space and
/// comments in ASCII may surround them; there is no other text. Attributes of one element have different names. Only
/// values can have bytes beyond ASCII: the visitor must check that they are UTF-8.
/// @param texts  receives the values that contain references; all others are in the document
/// @return whether the document is plain. If not, ignore everything that was visited
bool visitPlainDocument(std::string_view document, std::string_view root, std::string_view namespaceURI,
                        PlainTexts& texts, const PlainChildVisitor& visitChild);

/// Whether an attribute declares a prefix. The declaration is valid, and has no effect if no name has the prefix.
bool declaresPrefix(const PlainAttribute& attribute);

/// Whether a text is a valid xs:ID in ASCII.
bool isPlainID(std::string_view text);

/// Whether a text is a valid xs:dateTime in the usual form: whole seconds in UTC, in a year from 1400 on.
bool isPlainTime(std::string_view text);

/// The same, perhaps with a fraction, and perhaps without a time zone.
bool isPlainDateTime(std::string_view text);

/// The text of a plain value.
std::u16string widen(std::string_view value);

} // namespace opc::model
