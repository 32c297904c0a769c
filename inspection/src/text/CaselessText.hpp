#pragma once

#include <algorithm>
#include <string_view>

namespace opc::inspection {

/// Without regard to the case of ASCII letters.
/// @{

inline bool startsWith(std::string_view text, std::string_view lowerCaseBeginning) {
    return text.size() >= lowerCaseBeginning.size() &&
           std::equal(lowerCaseBeginning.begin(), lowerCaseBeginning.end(), text.begin(), [](char l, char c) {
               return l == (c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
           });
}

inline bool endsWith(std::string_view text, std::string_view lowerCaseEnd) {
    return text.size() >= lowerCaseEnd.size() &&
           startsWith(text.substr(text.size() - lowerCaseEnd.size()), lowerCaseEnd);
}

/// @}

} // namespace opc::inspection
