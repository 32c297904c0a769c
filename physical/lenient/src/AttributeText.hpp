#pragma once

#include <string>
#include <string_view>

namespace opc::physical::lenient {

/// The value of an attribute as it stands between quotes of either kind, so that it is read as it is.
std::u16string escapeValue(std::u16string_view value);

/// Adds an attribute to a start tag, behind a blank.
void addAttribute(std::u16string& tag, std::u16string_view name, std::u16string_view value);

} // namespace opc::physical::lenient
