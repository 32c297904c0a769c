#pragma once

#include <opc/inspection/Export.hpp>

#include <string>
#include <string_view>

namespace opc::inspection {

inline constexpr std::string_view RELATIONSHIPS_TYPE =
    "application/vnd.openxmlformats-package.relationships+xml";
inline constexpr std::string_view CORE_PROPERTIES_TYPE =
    "application/vnd.openxmlformats-package.core-properties+xml";

struct TypeDefect {
    std::string_view rule; ///< empty if there is none
    std::string message;   ///< goes behind what names the entry
};

/// What is wrong with a content type, by RFC 2616 section 3.7 and the rules [M1.13] to [M1.15] and [M1.22].
OPC_INSPECTION_EXPORT TypeDefect findTypeDefect(const std::string& contentType);

} // namespace opc::inspection
