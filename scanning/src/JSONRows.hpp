#pragma once

#include <opc/scanning/Result.hpp>

#include <nlohmann/json.hpp>

namespace opc::scanning {

/// The JSON of parts of a result: see `toJSON`.
/// @{
nlohmann::ordered_json describe(const model::CoreProperties& properties);
nlohmann::ordered_json describe(const inspection::Format& format);
nlohmann::ordered_json describe(const ScannedSignatures& signatures);
/// @}

inline nlohmann::ordered_json orNull(const std::string& text) {
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

} // namespace opc::scanning
