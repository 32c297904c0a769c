#pragma once

#include <string>
#include <string_view>

namespace opc::inspection {

/// A text as it stands in XML and HTML, in elements and in quoted attributes. Characters that nobody sees become blanks.
std::string toMarkup(std::string_view text);

} // namespace opc::inspection
