#pragma once

#include <string>
#include <string_view>

namespace opc::model {

/// Whether an attribute of type xs:anyURI can hold a value: it is valid there and is read again unchanged, code unit
/// by code unit.
///
/// Plain values (`xml/PlainURI.hpp`) are accepted at once. All others are checked by the validator of Xerces for the
/// type, as in reading.
bool isHeldURI(const std::u16string& value);

/// The same, and the value is short enough for a tag.
bool canHoldURI(const std::u16string& value);

/// The same for an attribute of type xs:ID, without a check of the length.
bool isHeldID(const std::u16string& value);

/// Collapses white space as validation does: each run becomes one blank, and both ends are trimmed.
std::u16string collapse(std::u16string_view value);

} // namespace opc::model
