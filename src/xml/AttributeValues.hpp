#pragma once

#include <string>
#include <string_view>

namespace opc::model {

/// Whether an attribute of type xs:anyURI holds a value: it is valid there and comes back from a document as it is, code
/// unit by code unit.
///
/// A plain value (`xml/PlainURI.hpp`) is known to. Any other is put to Xerces' own validator of the type, which
/// is the check that reading makes.
bool isHeldURI(const std::u16string& value);

/// The same, and the value is short enough for a tag.
bool canHoldURI(const std::u16string& value);

/// The same for an attribute of type xs:ID, but for the length.
bool isHeldID(const std::u16string& value);

/// A value as validation makes it where white space collapses: runs of it are one blank each, and none stands at the ends.
std::u16string collapse(std::u16string_view value);

} // namespace opc::model
