#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace opctool {

/// @return null for an empty text
inline nlohmann::ordered_json textOrNull(const std::string& text) {
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

/// @param text  a string or null, which is a dash
inline std::string textOrDash(const nlohmann::ordered_json& text) {
    return text.is_null() ? "-" : text.get<std::string>();
}

} // namespace opctool
