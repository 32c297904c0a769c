#pragma once

#include <functional>
#include <string>

namespace opc::model {

/// Whether an attribute of type xs:anyURI holds a value: it is valid there and comes back from a document as it is, code
/// unit by code unit.
///
/// A plain value (`xml/PlainDocument.hpp`) is known to. Any other is put to Xerces' own validator of the type, which
/// is the check that reading makes.
/// @param wakeXerces  called before Xerces is needed, to keep it initialised
bool canHoldURI(const std::u16string& value, const std::function<void()>& wakeXerces);

} // namespace opc::model
