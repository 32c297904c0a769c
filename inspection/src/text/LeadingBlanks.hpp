#pragma once

#include <algorithm>
#include <string_view>

namespace opc::inspection {

/// What is kept of a long text up to a limit must not be filled with blanks by whoever wants to hide the rest.
inline std::u16string_view withoutBlanksInFront(std::u16string_view text) {
    return text.substr(std::min(text.find_first_not_of(u" \t\r\n"), text.size()));
}

} // namespace opc::inspection
