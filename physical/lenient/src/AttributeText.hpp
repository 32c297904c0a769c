#pragma once

#include <opc/physical/LenientExport.hpp>

#include <string>
#include <string_view>

namespace opc::physical::lenient {

/// An attribute value in the form that both kinds of quotes can hold, so that it is read unchanged.
OPC_LENIENT_EXPORT std::u16string escapeValue(std::u16string_view value);

/// Adds a blank and an attribute to a start tag.
OPC_LENIENT_EXPORT void addAttribute(std::u16string& tag, std::u16string_view name,
                                     std::u16string_view value);

} // namespace opc::physical::lenient
