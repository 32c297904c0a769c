#pragma once

#include <string_view>

namespace opc::standard_signatures {

constexpr std::string_view RELATIONSHIPS_NAMESPACE =
    "http://schemas.openxmlformats.org/package/2006/relationships";

/// Of every relationships part.
constexpr std::string_view RELATIONSHIPS_CONTENT_TYPE =
    "application/vnd.openxmlformats-package.relationships+xml";

} // namespace opc::standard_signatures
