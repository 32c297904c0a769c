#pragma once

#include <string>

namespace opc::inspection {

/// A text as it stands in XML and HTML, in elements and in quoted attributes. Characters that nobody sees become blanks.
std::string toMarkup(const std::string& text);

} // namespace opc::inspection
